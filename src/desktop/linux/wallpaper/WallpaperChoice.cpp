#include "desktop/linux/wallpaper/WallpaperChoice.h"

#include <QDBusConnection>
#include <QMetaObject>
#include <utility>

#include "desktop/linux/wallpaper/RootWallpaper.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {

WallpaperChoice::WallpaperChoice(std::function<std::vector<Monitor>()> monitors, XEvents* x11)
    : surroundings_{{}, std::move(monitors), x11, std::make_shared<RootWallpaperMemory>()} {}

bool WallpaperChoice::isStillTheSame(const RunningDesktop& seen) const {
  const RunningDesktop& before = surroundings_.desktop;
  if (!adapter_ || seen.window == XCB_NONE || seen.windowClass != before.windowClass) return false;
  // xfdesktop 4.20 has a window a monitor, and any of them can be the lowest.
  return seen.window == before.window || (seen.pid != 0 && seen.pid == before.pid);
}

WallpaperChoice::Current WallpaperChoice::current() {
  if (isOfThisTurn_) return {row_, adapter_.get()};
  isOfThisTurn_ = true;
  QMetaObject::invokeMethod(
      &turn_, [this] { isOfThisTurn_ = false; }, Qt::QueuedConnection);
  RunningDesktop seen;
  if (XEvents* x11 = surroundings_.x11)
    seen = lookAtDesktopWindow(x11->server(), x11->stack().now(), surroundings_.monitors());
  if (!isStillTheSame(seen)) {
    lookAtBus(seen, bus_);
    choose(std::move(seen));
  }
  return {row_, adapter_.get()};
}

void WallpaperChoice::choose(RunningDesktop seen) {
  const bool sameProgram =
      seen.window == surroundings_.desktop.window && seen.pid == surroundings_.desktop.pid;
  surroundings_.desktop = std::move(seen);
  for (const WallpaperRow& row : wallpaperTable()) {
    if (!row.runs(surroundings_)) continue;
    if (&row == row_ && sameProgram && adapter_) return;
    auto adapter = row.make(surroundings_);
    if (!adapter) continue;
    qCInfo(lcWallpaper) << "the desktop's pictures are those of" << row.name;
    adapter_ = std::move(adapter);
    row_ = &row;
    adapter_->setChanged(changed_);
    return;
  }
  adapter_.reset();
  row_ = nullptr;
}

void WallpaperChoice::setChanged(std::function<void()> changed) {
  changed_ = std::move(changed);
  if (adapter_) adapter_->setChanged(changed_);
  if (!changed_) {
    names_.reset();
  } else if (!names_) {
    watchNames();
  }
}

void WallpaperChoice::watchNames() {
  names_ = std::make_unique<QDBusServiceWatcher>();
  names_->setConnection(QDBusConnection::sessionBus());
  for (const WallpaperRow& row : wallpaperTable()) {
    if (*row.busName != '\0') names_->addWatchedService(QLatin1String(row.busName));
  }
  QObject::connect(names_.get(), &QDBusServiceWatcher::serviceOwnerChanged, names_.get(), [this] {
    if (changed_) changed_();
  });
}

}  // namespace linux_desktop
