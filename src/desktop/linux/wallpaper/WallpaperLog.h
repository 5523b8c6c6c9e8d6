#pragma once

#include <QLoggingCategory>

namespace linux_desktop {

Q_DECLARE_LOGGING_CATEGORY(lcWallpaper)

}  // namespace linux_desktop
