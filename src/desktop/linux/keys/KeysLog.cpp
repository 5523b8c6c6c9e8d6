#include "desktop/linux/keys/KeysLog.h"

namespace linux_desktop {

Q_LOGGING_CATEGORY(lcKeys, "calmdeck.keys", QtWarningMsg)

}  // namespace linux_desktop
