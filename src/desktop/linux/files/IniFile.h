#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <string>

namespace linux_desktop {

// INI files of other programs, in whatever dialect: sections, keys and values as they are written.

/// The bytes of another program's settings file; none where there is no file.
[[nodiscard]] std::optional<QByteArray> iniText(const QString& file);

/// Makes the file hold exactly these bytes, or be absent, in one step. The reason on failure; one
/// that cannot be read is not replaced, since its settings would be lost.
[[nodiscard]] std::optional<std::string> putIniText(const QString& file,
                                                    const std::optional<QByteArray>& text);

/// The value of a key in a section ("Desktop"), as it is written; none where the key is absent.
[[nodiscard]] std::optional<QByteArray> iniValue(const QByteArray& text, const QByteArray& section,
                                                 const QByteArray& key);

/// The text with another value, or without the key; all else stays byte for byte. A section that is
/// missing comes first.
[[nodiscard]] QByteArray withIniValue(const QByteArray& text, const QByteArray& section,
                                      const QByteArray& key,
                                      const std::optional<QByteArray>& value);

/// Gives the key in the file that value, or takes it out. The reason on failure.
[[nodiscard]] std::optional<std::string> setIniValue(const QString& file, const QByteArray& section,
                                                     const QByteArray& key,
                                                     const std::optional<QByteArray>& value);

}  // namespace linux_desktop
