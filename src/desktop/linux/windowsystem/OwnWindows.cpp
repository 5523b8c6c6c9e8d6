#include "desktop/linux/windowsystem/OwnWindows.h"

namespace linux_desktop {

void OwnWindows::activate(QWindow& window) {
  const QString token = takeToken();
  // Where Qt looks for it, and takes it away.
  if (!token.isEmpty()) qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
  window.requestActivate();
}

}  // namespace linux_desktop
