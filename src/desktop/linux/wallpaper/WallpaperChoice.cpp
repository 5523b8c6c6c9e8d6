#include "desktop/linux/wallpaper/WallpaperChoice.h"

#include <QDBusConnection>
#include <QDBusReply>
#include <QMetaObject>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {

WallpaperChoice::WallpaperChoice(DesktopFacts& facts)
    : surroundings_{
          facts,
          {},
          {},
          qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(QLatin1Char(':'), Qt::SkipEmptyParts)} {
  names_.setConnection(QDBusConnection::sessionBus());
  for (const WallpaperRow& row : wallpaperTable()) {
    if (*row.busName != '\0') names_.addWatchedService(QLatin1String(row.busName));
  }
  QObject::connect(&names_, &QDBusServiceWatcher::serviceOwnerChanged, &names_, [this] {
    if (changed_) changed_();
    if (programsChanged_) programsChanged_();
  });
}

WallpaperChoice::~WallpaperChoice() {
  take(nullptr, nullptr);
}

bool WallpaperChoice::isStillTheSame(const DesktopWindow& seen) const {
  const DesktopWindow& before = surroundings_.window;
  if (!adapter_ || seen.id == 0 || seen.windowClass != before.windowClass) return false;
  // xfdesktop 4.20 has a window a monitor, and any of them can be the lowest.
  return seen.id == before.id || (seen.pid != 0 && seen.pid == before.pid);
}

WallpaperChoice::Current WallpaperChoice::current() {
  if (isOfThisTurn_) return {row_, adapter_.get()};
  isOfThisTurn_ = true;
  QMetaObject::invokeMethod(
      &turn_, [this] { isOfThisTurn_ = false; }, Qt::QueuedConnection);
  const DesktopWindow seen = surroundings_.facts.desktopWindow();
  if (!isStillTheSame(seen)) choose(seen);
  return {row_, adapter_.get()};
}

void WallpaperChoice::choose(const DesktopWindow& seen) {
  const DesktopWindow& before = surroundings_.window;
  const bool sameProgram = seen.id == before.id && seen.pid == before.pid;
  surroundings_.window = seen;
  const QDBusReply<QStringList> names = bus_.call(callToBus("ListNames"));
  surroundings_.busNames = names.value();
  for (const WallpaperRow& row : wallpaperTable()) {
    if (!row.runs(surroundings_)) continue;
    if (&row == row_ && sameProgram && adapter_) return;
    auto adapter = row.make(surroundings_);
    if (!adapter) continue;
    qCInfo(lcWallpaper) << "the desktop's pictures are those of" << row.name;
    return take(&row, std::move(adapter));
  }
  take(nullptr, nullptr);
}

void WallpaperChoice::take(const WallpaperRow* row, std::shared_ptr<WallpaperAdapter> adapter) {
  // It may live on.
  if (adapter_) adapter_->setChanged({});
  row_ = row;
  adapter_ = std::move(adapter);
  if (adapter_) adapter_->setChanged(changed_);
}

void WallpaperChoice::setChanged(std::function<void()> changed) {
  changed_ = std::move(changed);
  if (adapter_) adapter_->setChanged(changed_);
}

}  // namespace linux_desktop
