#include "desktop/linux/tray/TrayLog.h"

namespace linux_desktop {

Q_LOGGING_CATEGORY(trayLog, "calmdeck.tray", QtWarningMsg)

}  // namespace linux_desktop
