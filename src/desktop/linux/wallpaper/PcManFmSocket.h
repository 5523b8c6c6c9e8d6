#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <string>

namespace linux_desktop {

/// Where the running pcmanfm of this display listens for the arguments of its further starts.
[[nodiscard]] QString pcManFmSocket();

/// Hands options over as `pcmanfm <options>` would, without waiting: `read` is called when they
/// were read, which is when they are carried out, or when the program has ended. Not once `context`
/// is gone. The reason where the program cannot be reached; nothing is carried out then.
[[nodiscard]] std::optional<std::string> tellPcManFm(const QStringList& options, QObject& context,
                                                     std::function<void()> read);

}  // namespace linux_desktop
