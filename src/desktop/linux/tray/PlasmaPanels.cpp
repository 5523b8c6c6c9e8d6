#include "desktop/linux/tray/PlasmaPanels.h"

#include <QDBusReply>
#include <QGuiApplication>
#include <QRegion>
#include <QScreen>

namespace linux_desktop {

// It tells nobody of a change, and says of a shell that is still starting that nothing is taken.
void PlasmaPanels::askAll() {
  const QList<QScreen*> screens = QGuiApplication::screens();
  std::vector<QDBusMessage> questions;
  for (const QScreen* screen : screens) {
    questions.push_back(shell_.method("/StrutManager", "org.kde.PlasmaShell.StrutManager",
                                      "availableScreenRect", {screen->name()}));
  }
  auto screen = screens.begin();
  for (const QDBusReply<QRect> usable : shell_.callAll(questions)) {
    const QString name = (*screen++)->name();
    if (usable.isValid()) usable_[name] = usable.value();
  }
}

std::vector<DesktopPanel> PlasmaPanels::panels() {
  askAll();
  std::vector<DesktopPanel> panels;
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect usable = usable_.value(screen->name()) & screen->geometry();
    if (usable.isEmpty()) continue;
    // An edge at a time.
    for (const QRect& edge : QRegion(screen->geometry()) - usable) panels.push_back({edge, edge});
  }
  return panels;
}

}  // namespace linux_desktop
