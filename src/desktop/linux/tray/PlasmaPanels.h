#pragma once

#include <QHash>
#include <vector>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/windowsystem/OwnWindows.h"

namespace linux_desktop {

/// The edges of the screens that Plasma's panels keep free, as Plasma tells whoever asks: no window
/// system does in a Wayland session. Main thread only.
class PlasmaPanels {
 public:
  /// As they are now, or, when it does not answer in time, as it told last; none where no Plasma
  /// runs.
  [[nodiscard]] std::vector<DesktopPanel> panels();

 private:
  void askAll();

  BusPeer shell_{QStringLiteral("org.kde.plasmashell")};
  QHash<QString, QRect> usable_;  // by the screen's name
};

}  // namespace linux_desktop
