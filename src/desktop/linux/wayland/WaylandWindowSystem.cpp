#include "desktop/linux/wayland/WaylandWindowSystem.h"

#include <utility>

namespace linux_desktop {

std::unique_ptr<WaylandWindowSystem> WaylandWindowSystem::open() {
  auto connection = WaylandConnection::open();
  if (!connection) return nullptr;
  return std::unique_ptr<WaylandWindowSystem>(new WaylandWindowSystem(std::move(connection)));
}

WaylandWindowSystem::WaylandWindowSystem(std::unique_ptr<WaylandConnection> connection)
    : connection_(std::move(connection)) {
  if (shell_.isThere()) facts_.setBareDesktop(wallpaper_);
  if (!qt_) return;
  keyboard_.emplace(*qt_);
  ownWindows_.emplace(*qt_, *keyboard_, shell_, outputs_);
  if (!toplevels_) return;
  setBringer([this](const QString& title) { return toplevels_->bringForward(title); });
}

}  // namespace linux_desktop
