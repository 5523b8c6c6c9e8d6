#include "desktop/linux/wallpaper/WallpaperLog.h"

namespace linux_desktop {

Q_LOGGING_CATEGORY(lcWallpaper, "calmdeck.wallpaper", QtWarningMsg)

}  // namespace linux_desktop
