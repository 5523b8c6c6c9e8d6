#include "desktop/linux/login/LoginLog.h"

namespace linux_desktop {

Q_LOGGING_CATEGORY(lcLogin, "calmdeck.login", QtWarningMsg)

}  // namespace linux_desktop
