#include "desktop/linux/x11/XOwnWindows.h"

#include <algorithm>

#include "desktop/linux/x11/XPanels.h"
#include "desktop/linux/x11/XPressWatch.h"

namespace linux_desktop {
namespace {

/// EWMH 1.5: source 2 is "the user's own wish", as a pager would pass it on.
constexpr std::uint32_t kUser = 2;
constexpr std::uint32_t kEveryWorkspace = 0xffffffff;

xcb_window_t idOf(const QWindow& window) {
  return static_cast<xcb_window_t>(window.winId());
}

}  // namespace

void XOwnWindows::keepOutOfTaskLists(QWindow& window) {
  // Qt adds its own states to these when it maps the window.
  server_.setNumbers(
      idOf(window), "_NET_WM_STATE", XCB_ATOM_ATOM,
      {server_.atom("_NET_WM_STATE_SKIP_TASKBAR"), server_.atom("_NET_WM_STATE_SKIP_PAGER")},
      XServer::connectionOfQt());
}

void XOwnWindows::markAsAskedFor(QWindow& window) {
  // Qt has written the time of the last event it saw, which may be none or long ago; where the
  // window manager knows the property, into a window of its own.
  xcb_flush(XServer::connectionOfQt());
  const xcb_timestamp_t now = server_.time();
  const xcb_window_t holder =
      server_.number(idOf(window), "_NET_WM_USER_TIME_WINDOW").value_or(idOf(window));
  server_.setNumbers(holder, "_NET_WM_USER_TIME", XCB_ATOM_CARDINAL, {now},
                     XServer::connectionOfQt());
  xcb_flush(XServer::connectionOfQt());
}

bool XOwnWindows::isKept(QWindow& window) {
  // ICCCM 4.1.3.1: a window manager gives it to the windows that it manages; 0 is Withdrawn.
  return server_.number(idOf(window), "WM_STATE").value_or(0) != 0;
}

void XOwnWindows::activate(QWindow& window) {
  if (!server_.managerKnows("_NET_ACTIVE_WINDOW")) {
    window.requestActivate();
    return;
  }
  // Some window managers would take the user to its workspace, or do nothing.
  const auto workspace = server_.number(server_.root(), "_NET_CURRENT_DESKTOP");
  const auto own = server_.number(idOf(window), "_NET_WM_DESKTOP");
  if (workspace && own && own != workspace && own != kEveryWorkspace) {
    server_.askManager(idOf(window), "_NET_WM_DESKTOP", {*workspace, kUser},
                       XServer::connectionOfQt());
  }
  const xcb_timestamp_t now = server_.time();
  server_.askManager(idOf(window), "_NET_ACTIVE_WINDOW", {kUser, now}, XServer::connectionOfQt());
  // To bspwm 0.9 the only window of a workspace has the keyboard, and it gives a popover none.
  const auto active = server_.number(server_.root(), "_NET_ACTIVE_WINDOW");
  if (window.isExposed() && active.value_or(XCB_NONE) == XCB_NONE) {
    xcb_set_input_focus(XServer::connectionOfQt(), XCB_INPUT_FOCUS_POINTER_ROOT, idOf(window), now);
  }
  xcb_flush(XServer::connectionOfQt());
}

std::vector<DesktopPanel> XOwnWindows::panels() {
  std::vector<DesktopPanel> panels;
  for (const XPanel& panel : panelsOn(server_)) {
    const QScreen* screen = screenOf(panel.geometry);
    panels.push_back(
        {fromPixels(panel.geometry, screen), fromPixels(panel.reserved, screen), panel.pid});
  }
  return panels;
}

std::optional<PanelPart> XOwnWindows::partDrawnBy(std::uint32_t pid) {
  for (const XPanel& panel : panelsOn(server_)) {
    const auto part = linux_desktop::partDrawnBy(pid, panel, server_);
    if (!part) continue;
    const QScreen* screen = screenOf(panel.geometry);
    return PanelPart{fromPixels(*part, screen), fromPixels(panel.geometry, screen)};
  }
  return std::nullopt;
}

std::unique_ptr<OwnWindows::PressWatch> XOwnWindows::watchPresses(QWindow& window,
                                                                  const Pressed& pressed) {
  const auto isOnPanel = [this](QPoint onRoot) {
    return std::ranges::any_of(panelsOn(server_), [onRoot](const XPanel& panel) {
      return panel.geometry.contains(onRoot);
    });
  };
  return std::make_unique<XPressWatch>(events_, idOf(window), isOnPanel, pressed);
}

}  // namespace linux_desktop
