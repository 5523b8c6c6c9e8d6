#include "desktop/linux/x11/X11WindowSystem.h"

#include <utility>

namespace linux_desktop {

std::unique_ptr<X11WindowSystem> X11WindowSystem::open() {
  auto server = XServer::connect();
  if (!server) return nullptr;
  return std::unique_ptr<X11WindowSystem>(new X11WindowSystem(std::move(server)));
}

bool X11WindowSystem::isReachable() {
  xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
  const bool reachable = xcb_connection_has_error(connection) == 0;
  xcb_disconnect(connection);
  return reachable;
}

X11WindowSystem::X11WindowSystem(std::unique_ptr<XServer> server)
    : server_(std::move(server)), keyboard_(XKeyboard::open(events_)) {
  covers_.setIconsChanged([this] { shown_.lookAgain(); });
  if (!keyboard_) return;
  hotKeys_ = XHotKeys::open(events_, *keyboard_);
  translator_.emplace(*keyboard_);
}

}  // namespace linux_desktop
