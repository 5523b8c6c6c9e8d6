#include "desktop/linux/process/ProcessLog.h"

namespace linux_desktop {

Q_LOGGING_CATEGORY(lcProcess, "calmdeck.process", QtWarningMsg)

}  // namespace linux_desktop
