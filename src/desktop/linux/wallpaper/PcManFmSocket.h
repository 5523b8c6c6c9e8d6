#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <string>

namespace linux_desktop {

/// Where the running pcmanfm of this display listens for the arguments of its further starts.
[[nodiscard]] QString pcManFmSocket();

/// Hands options over as `pcmanfm <options>` would, and waits until they are read, half a second
/// at most. They are carried out some time after that. The reason on failure.
[[nodiscard]] std::optional<std::string> tellPcManFm(const QStringList& options);

}  // namespace linux_desktop
