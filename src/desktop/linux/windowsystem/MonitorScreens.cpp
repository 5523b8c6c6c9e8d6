#include "desktop/linux/windowsystem/MonitorScreens.h"

#include <QGuiApplication>
#include <QScreen>
#include <utility>

namespace linux_desktop {
namespace {

/// From one direction of y to the other, either way: of a rectangle beside the first monitor.
int turned(int y, int height, const Monitor& first) {
  return first.points.y() + first.points.height() - y - height;
}

std::vector<Monitor> monitorsOfQt() {
  std::vector<Monitor> monitors;
  const QScreen* primary = QGuiApplication::primaryScreen();
  if (primary == nullptr) return {Monitor{QStringLiteral("screen"), {0, 0, 1, 1}}};
  const auto add = [&](const QScreen& screen) {
    monitors.push_back({screen.name(), screen.geometry(), screen.devicePixelRatio()});
  };
  add(*primary);
  for (const QScreen* screen : QGuiApplication::screens()) {
    if (screen != primary) add(*screen);
  }
  return monitors;
}

}  // namespace

MonitorScreens::MonitorScreens(Read read, std::chrono::milliseconds settling)
    : read_(std::move(read)), settling_(settling, [this] { settled(); }) {}

void MonitorScreens::settled() {
  std::vector<Monitor> now = read_();
  if (now == monitors_) return;
  monitors_ = std::move(now);
  if (client_ != nullptr) client_->screenParametersDidChange();
}

std::vector<platform::port::ScreenInfo> MonitorScreens::screens() const {
  const Monitor& first = monitors_.front();
  std::vector<platform::port::ScreenInfo> screens;
  for (const Monitor& monitor : monitors_) {
    const QRect& area = monitor.points;
    screens.push_back(
        {monitor.name.toStdString(),
         platform::NSRect{static_cast<double>(area.x() - first.points.x()),
                          static_cast<double>(turned(area.y(), area.height(), first)),
                          static_cast<double>(area.width()), static_cast<double>(area.height())},
         backingScaleOf(monitor)});
  }
  return screens;
}

QRect MonitorScreens::points(const platform::NSRect& frame) const {
  const Monitor& first = monitors_.front();
  const auto height = static_cast<int>(frame.height);
  return {static_cast<int>(frame.x) + first.points.x(),
          turned(static_cast<int>(frame.y), height, first), static_cast<int>(frame.width), height};
}

QtScreens::QtScreens() : MonitorScreens(&monitorsOfQt, std::chrono::milliseconds::zero()) {
  const auto changed = [this] { mayHaveChanged(); };
  const auto follow = [this, changed](QScreen* screen) {
    QObject::connect(screen, &QScreen::geometryChanged, &context(), changed);
  };
  for (QScreen* screen : QGuiApplication::screens()) follow(screen);
  QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &context(),
                   [follow, changed](QScreen* screen) {
                     follow(screen);
                     changed();
                   });
  QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &context(), changed);
  QObject::connect(qGuiApp, &QGuiApplication::primaryScreenChanged, &context(), changed);
  readNow();
}

}  // namespace linux_desktop
