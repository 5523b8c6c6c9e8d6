#include "desktop/linux/ui/UiLog.h"

namespace linux_desktop {

Q_LOGGING_CATEGORY(lcUi, "calmdeck.ui", QtWarningMsg)

}  // namespace linux_desktop
