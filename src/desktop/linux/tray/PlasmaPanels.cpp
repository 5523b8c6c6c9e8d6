#include "desktop/linux/tray/PlasmaPanels.h"

#include <QDBusReply>
#include <QGuiApplication>
#include <QScreen>

#include "desktop/linux/bus/BusCall.h"

namespace linux_desktop {
namespace {

constexpr const char* kPlasma = "org.kde.plasmashell";

/// What of `screen` lies outside `usable`, an edge at a time.
std::vector<QRect> edgesOf(const QRect& screen, const QRect& usable) {
  std::vector<QRect> edges{
      {screen.topLeft(), QPoint(screen.right(), usable.top() - 1)},
      {QPoint(screen.left(), usable.bottom() + 1), screen.bottomRight()},
      {QPoint(screen.left(), usable.top()), QPoint(usable.left() - 1, usable.bottom())},
      {QPoint(usable.right() + 1, usable.top()), QPoint(screen.right(), usable.bottom())}};
  std::erase_if(edges, [](const QRect& edge) { return edge.isEmpty(); });
  return edges;
}

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
    for (const QRect& edge : edgesOf(screen->geometry(), usable)) {
      panels.push_back({edge, edge});
    }
  }
  askAll();
  return panels;
}

}  // namespace linux_desktop
