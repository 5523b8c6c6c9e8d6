#include "desktop/linux/xserver/XLog.h"

namespace linux_desktop {

Q_LOGGING_CATEGORY(lcX11, "calmdeck.x11", QtWarningMsg)

}  // namespace linux_desktop
