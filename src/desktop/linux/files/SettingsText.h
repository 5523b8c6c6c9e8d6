#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <optional>
#include <string>

namespace linux_desktop {

/// The bytes of another program's settings file; none where there is no file.
[[nodiscard]] std::optional<QByteArray> settingsText(const QString& file);

/// Makes the file hold exactly these bytes, or be absent, in one step. The reason on failure.
[[nodiscard]] std::optional<std::string> putSettingsText(const QString& file,
                                                         const std::optional<QByteArray>& text);

/// The value of a key in a section ("Desktop"), as it is written; none where the key is absent.
[[nodiscard]] std::optional<QByteArray> writtenValue(const QByteArray& text,
                                                     const QByteArray& section,
                                                     const QByteArray& key);

/// The text with another value, or without the key; all else stays byte for byte.
[[nodiscard]] QByteArray withValue(const QByteArray& text, const QByteArray& section,
                                   const QByteArray& key, const std::optional<QByteArray>& value);

}  // namespace linux_desktop
