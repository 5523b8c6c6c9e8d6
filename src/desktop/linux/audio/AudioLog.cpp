#include "desktop/linux/audio/AudioLog.h"

namespace linux_desktop {

Q_LOGGING_CATEGORY(audioLog, "calmdeck.audio", QtWarningMsg)

}  // namespace linux_desktop
