#include "desktop/linux/wallpaper/RunningDesktop.h"

#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QFile>
#include <algorithm>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/xserver/WindowStack.h"

namespace linux_desktop {
namespace {

QByteArray textOf(const XServer& server, xcb_window_t window, xcb_atom_t property) {
  xcb_generic_error_t* error = nullptr;
  const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
      server.get(),
      xcb_get_property(server.get(), 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 256),
      &error));
  const XReply<xcb_generic_error_t> gone(error);
  if (!reply) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          xcb_get_property_value_length(reply.get())};
}

/// EWMH 1.5.
QString windowManagerOf(XServer& server) {
  const auto check = server.numbers(server.root(), "_NET_SUPPORTING_WM_CHECK");
  if (check.empty()) return {};
  return QString::fromUtf8(textOf(server, check.front(), server.atom("_NET_WM_NAME")));
}

bool coversAMonitor(const WindowStack::DesktopWindow& window,
                    const std::vector<Monitor>& monitors) {
  return std::ranges::any_of(monitors,
                             [&](const Monitor& monitor) { return window.covers(monitor.pixels); });
}

}  // namespace

RunningDesktop lookAtDesktopWindow(XServer& server, const WindowStack& stack,
                                   const std::vector<Monitor>& monitors) {
  const auto lowest = std::ranges::find_if(stack.desktopWindows, [&](const auto& window) {
    return !window.ours && coversAMonitor(window, monitors);
  });
  RunningDesktop desktop;
  if (lowest == stack.desktopWindows.end()) {
    desktop.windowManager = windowManagerOf(server);
    return desktop;
  }
  desktop.window = lowest->window;
  // The second of the two strings, each ended by a null byte (ICCCM 4.1.2.5).
  const QByteArray both = textOf(server, lowest->window, XCB_ATOM_WM_CLASS);
  desktop.windowClass = QString::fromUtf8(both.split('\0').value(1));
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

QByteArrayList commandLineOf(qint64 pid) {
  QFile file(QStringLiteral("/proc/%1/cmdline").arg(pid));
  if (pid <= 0 || !file.open(QIODevice::ReadOnly)) return {};
  QByteArrayList words = file.readAll().split('\0');
  if (!words.isEmpty() && words.last().isEmpty()) words.removeLast();
  return words;
}

QString profileIn(const QByteArrayList& commandLine) {
  constexpr const char* kWithValue = "--profile=";
  for (qsizetype i = 1; i < commandLine.size(); ++i) {
    const QByteArray& word = commandLine[i];
    if (word.startsWith(kWithValue)) {
      return QFile::decodeName(word.mid(static_cast<qsizetype>(qstrlen(kWithValue))));
    }
    if ((word == "--profile" || word == "-p") && i + 1 < commandLine.size()) {
      return QFile::decodeName(commandLine[i + 1]);
    }
  }
  return QStringLiteral("default");
}

}  // namespace linux_desktop
