#include "desktop/linux/ui/XWindowHints.h"

#include <QGuiApplication>
#include <algorithm>
#include <array>

namespace linux_desktop {
namespace {

xcb_connection_t* qtConnection() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 == nullptr ? nullptr : x11->connection();
}

xcb_window_t idOf(const QWindow& window) {
  return static_cast<xcb_window_t>(window.winId());
}

}  // namespace

void keepOutOfTaskLists(QWindow& window, XServer& server) {
  // Qt adds its own states to these when it maps the window.
  const std::array states{server.atom("_NET_WM_STATE_SKIP_TASKBAR"),
                          server.atom("_NET_WM_STATE_SKIP_PAGER")};
  xcb_change_property(qtConnection(), XCB_PROP_MODE_REPLACE, idOf(window),
                      server.atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 32, states.size(),
                      states.data());
}

void markAsAskedFor(QWindow& window, XServer& server) {
  // Qt has written the time of the last event it saw, which may be none or long ago; where the
  // window manager knows the property, into a window of its own.
  xcb_flush(qtConnection());
  const xcb_timestamp_t now = server.time();
  const auto other = server.numbers(idOf(window), "_NET_WM_USER_TIME_WINDOW");
  const xcb_window_t holder = other.empty() ? idOf(window) : other.front();
  xcb_change_property(qtConnection(), XCB_PROP_MODE_REPLACE, holder,
                      server.atom("_NET_WM_USER_TIME"), XCB_ATOM_CARDINAL, 32, 1, &now);
  xcb_flush(qtConnection());
}

void activate(QWindow& window, XServer& server) {
  const auto supported = server.numbers(server.root(), "_NET_SUPPORTED");
  const xcb_atom_t message = server.atom("_NET_ACTIVE_WINDOW");
  if (std::ranges::find(supported, message) == supported.end()) {
    window.requestActivate();
    return;
  }
  // EWMH 1.5: source 2 is "the user's own wish", as a pager would pass it on.
  constexpr std::uint32_t kUser = 2;
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = idOf(window);
  event.type = message;
  event.data.data32[0] = kUser;
  event.data.data32[1] = server.time();
  xcb_send_event(qtConnection(), 0, server.root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&event));
  xcb_flush(qtConnection());
}

}  // namespace linux_desktop
