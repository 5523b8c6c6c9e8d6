#include "desktop/linux/windowsystem/QtScreens.h"

#include <QGuiApplication>
#include <QScreen>

namespace linux_desktop {

QtScreens::QtScreens() {
  settling_.setSingleShot(true);
  QObject::connect(&settling_, &QTimer::timeout, &settling_, [this] {
    if (client_ != nullptr) client_->screenParametersDidChange();
  });
  const auto settle = [this] { settling_.start(0); };
  const auto follow = [this, settle](QScreen* screen) {
    QObject::connect(screen, &QScreen::geometryChanged, &settling_, settle);
  };
  for (QScreen* screen : QGuiApplication::screens()) follow(screen);
  QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &settling_,
                   [follow, settle](QScreen* screen) {
                     follow(screen);
                     settle();
                   });
  QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &settling_, settle);
  QObject::connect(qGuiApp, &QGuiApplication::primaryScreenChanged, &settling_, settle);
}

std::vector<platform::port::ScreenInfo> QtScreens::screens() const {
  std::vector<platform::port::ScreenInfo> screens;
  const QScreen* primary = QGuiApplication::primaryScreen();
  if (primary == nullptr) return {{"screen", {0, 0, 1, 1}, 1}};
  const QRect first = primary->geometry();
  const auto add = [&](const QScreen& screen) {
    const QRect area = screen.geometry();
    screens.push_back(
        {screen.name().toStdString(),
         platform::NSRect{
             static_cast<double>(area.x() - first.x()),
             static_cast<double>(first.y() + first.height() - area.y() - area.height()),
             static_cast<double>(area.width()), static_cast<double>(area.height())},
         screen.devicePixelRatio()});
  };
  add(*primary);
  for (const QScreen* screen : QGuiApplication::screens()) {
    if (screen != primary) add(*screen);
  }
  return screens;
}

std::vector<Monitor> QtScreens::monitors() const {
  std::vector<Monitor> monitors;
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect area = screen->geometry();
    monitors.push_back(
        {screen->name(), QRect(area.topLeft(), area.size() * screen->devicePixelRatio())});
  }
  return monitors;
}

}  // namespace linux_desktop
