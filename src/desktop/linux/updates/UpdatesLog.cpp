#include "desktop/linux/updates/UpdatesLog.h"

namespace linux_desktop {

Q_LOGGING_CATEGORY(lcUpdates, "calmdeck.updates", QtWarningMsg)

}  // namespace linux_desktop
