#include "desktop/linux/x11/X11WindowSystem.h"

#include <xcb/xcbext.h>

#include <algorithm>
#include <span>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

bool isXwayland(XServer& server, const XScreens& screens) {
  static xcb_extension_t xwayland{"XWAYLAND", 0};
  const auto* extension = xcb_get_extension_data(server.get(), &xwayland);
  // Only newer ones have the extension, and only older ones name their outputs after themselves.
  return (extension != nullptr && extension->present != 0) ||
         std::ranges::any_of(screens.monitors(), [](const Monitor& monitor) {
           return monitor.name.startsWith(QLatin1String("XWAYLAND"));
         });
}

}  // namespace

std::unique_ptr<X11WindowSystem> X11WindowSystem::open() {
  auto server = XServer::connect();
  if (!server) return nullptr;
  return std::unique_ptr<X11WindowSystem>(new X11WindowSystem(std::move(server)));
}

bool X11WindowSystem::isReachable() {
  return xcb_connection_has_error(XConnection(xcb_connect(nullptr, nullptr)).get()) == 0;
}

X11WindowSystem::X11WindowSystem(std::unique_ptr<XServer> server)
    : server_(std::move(server)), keyboard_(XKeyboard::open(events_)) {
  if (keyboard_) hotKeys_ = XHotKeys::open(events_, *keyboard_);
}

QByteArray X11WindowSystem::i3Socket() {
  if (server_->managerName() != "i3") return {};
  const XProperty path{server_->root(), server_->atom("I3_SOCKET_PATH")};
  return QByteArray::fromStdString(server_->read(std::span(&path, 1)).front().text());
}

X11WindowSystem::Sight X11WindowSystem::look() {
  if (!isXwayland(*server_, screens_)) return Sight::Everything;
  qCWarning(lcX11,
            "this is a Wayland session, and Calmdeck runs as an X11 program in it: install Qt's "
            "plugin for Wayland (qt6-wayland), and leave QT_QPA_PLATFORM unset");
  return server_->managerName() == "KWin" ? Sight::DesktopAndKeys : Sight::OwnWindows;
}

}  // namespace linux_desktop
