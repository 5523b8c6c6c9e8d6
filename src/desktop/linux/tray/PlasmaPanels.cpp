#include "desktop/linux/tray/PlasmaPanels.h"

#include <QDBusReply>
#include <QGuiApplication>
#include <QRegion>
#include <QScreen>

#include "desktop/linux/bus/BusCall.h"

namespace linux_desktop {
namespace {

constexpr const char* kPlasma = "org.kde.plasmashell";

}  // namespace

PlasmaPanels::PlasmaPanels(const QDBusConnection& bus)
    : bus_(bus), watcher_(kPlasma, bus, QDBusServiceWatcher::WatchForOwnerChange) {
  QObject::connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, &context_, [this] {
    usable_.clear();
    askAll();
  });
  askAll();
}

void PlasmaPanels::askAll() {
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QString name = screen->name();
    ask(bus_,
        busCall(kPlasma, "/StrutManager", "org.kde.PlasmaShell.StrutManager", "availableScreenRect",
                {name}),
        &context_, [this, name](const QDBusMessage& answer) {
          const QDBusReply<QRect> usable = answer;
          if (usable.isValid()) usable_[name] = usable.value();
        });
  }
}

std::vector<DesktopPanel> PlasmaPanels::panels() {
  std::vector<DesktopPanel> panels;
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect usable = usable_.value(screen->name()) & screen->geometry();
    if (usable.isEmpty()) continue;
    // An edge at a time.
    for (const QRect& edge : QRegion(screen->geometry()) - usable) panels.push_back({edge, edge});
  }
  askAll();
  return panels;
}

}  // namespace linux_desktop
