#include "desktop/linux/notifications/NotificationsLog.h"

namespace linux_desktop {

Q_LOGGING_CATEGORY(lcNotifications, "calmdeck.notifications", QtWarningMsg)

}  // namespace linux_desktop
