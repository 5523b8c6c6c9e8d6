#include "desktop/linux/wallpaper/RunningDesktop.h"

#include <QDBusMessage>
#include <QDBusPendingReply>

#include <algorithm>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/xserver/WindowStack.h"

namespace linux_desktop {
namespace {

/// The second of the two strings, each ended by a null byte (ICCCM 4.1.2.5).
QString classOf(const XServer& server, xcb_window_t window) {
  xcb_generic_error_t* error = nullptr;
  const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
      server.get(),
      xcb_get_property(server.get(), 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 256),
      &error));
  const XReply<xcb_generic_error_t> gone(error);
  if (!reply) return {};
  const QByteArray both(static_cast<const char*>(xcb_get_property_value(reply.get())),
                        xcb_get_property_value_length(reply.get()));
  return QString::fromUtf8(both.split('\0').value(1));
}

}  // namespace

RunningDesktop lookAtDesktopWindow(XServer& server, const WindowStack& stack) {
  const auto lowest =
      std::ranges::find(stack.desktopWindows, false, &WindowStack::DesktopWindow::ours);
  RunningDesktop desktop;
  if (lowest == stack.desktopWindows.end()) return desktop;
  desktop.window = lowest->window;
  desktop.windowClass = classOf(server, lowest->window);
  const auto pid = server.numbers(lowest->window, "_NET_WM_PID");
  desktop.pid = pid.empty() ? 0 : pid.front();
  return desktop;
}

void lookAtBus(RunningDesktop& desktop, BusPeer& bus) {
  const QDBusPendingReply<QStringList> names =
      bus.call(bus.method(QStringLiteral("/org/freedesktop/DBus"),
                          QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ListNames")));
  desktop.busNames = names.isError() ? QStringList() : names.value();
  desktop.environment =
      qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(QLatin1Char(':'), Qt::SkipEmptyParts);
}

}  // namespace linux_desktop
