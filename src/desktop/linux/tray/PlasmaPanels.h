#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QHash>
#include <QObject>
#include <vector>

#include "desktop/linux/windowsystem/OwnWindows.h"

namespace linux_desktop {

/// The edges of the screens that Plasma's panels keep free, as Plasma tells them: no window system
/// does in a Wayland session. Each is what was last heard. Main thread only.
class PlasmaPanels {
 public:
  explicit PlasmaPanels(const QDBusConnection& bus);

  /// None where no Plasma runs. Asks anew, for the next time.
  [[nodiscard]] std::vector<DesktopPanel> panels();

 private:
  void askAll();

  QDBusConnection bus_;
  QHash<QString, QRect> usable_;  // by the screen's name
  QObject context_;
  QDBusServiceWatcher watcher_;
};

}  // namespace linux_desktop
