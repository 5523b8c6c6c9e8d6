#include "desktop/linux/gsettings/GSettingsLog.h"

namespace linux_desktop {

Q_LOGGING_CATEGORY(lcGSettings, "calmdeck.gsettings", QtWarningMsg)

}  // namespace linux_desktop
