#pragma once

#include <QLoggingCategory>

namespace linux_desktop {

/// "calmdeck.x11": screens, covers, windows of other programs.
Q_DECLARE_LOGGING_CATEGORY(lcX11)

}  // namespace linux_desktop
