#pragma once

#include <xcb/xproto.h>

#include <QByteArrayList>
#include <QString>
#include <QStringList>
#include <vector>

#include "desktop/linux/wallpaper/Backdrop.h"

namespace linux_desktop {

class BusPeer;
class XServer;
struct WindowStack;

/// What can be seen of who draws the desktop.
struct RunningDesktop {
  /// The lowest visible window of type DESKTOP that covers a monitor and is not ours; XCB_NONE
  /// where there is none.
  xcb_window_t window = XCB_NONE;
  /// Of that window: the second part of WM_CLASS, and _NET_WM_PID or 0.
  QString windowClass;
  qint64 pid = 0;
  /// What the window manager calls itself.
  QString windowManager;
  /// The names that have an owner on the session bus.
  QStringList busNames;
  /// What XDG_CURRENT_DESKTOP lists; only ever a tie-break.
  QStringList environment;

  bool operator==(const RunningDesktop&) const = default;
};

/// The window alone, which is what changes when another program takes over, or the window manager
/// where there is none; no bus call.
[[nodiscard]] RunningDesktop lookAtDesktopWindow(XServer& server, const WindowStack& stack,
                                                 const std::vector<Monitor>& monitors);

/// Adds what is on the bus, which `bus` stands for, and in the environment.
void lookAtBus(RunningDesktop& desktop, BusPeer& bus);

/// The program of a process and its arguments as it was started; empty where nobody may know.
[[nodiscard]] QByteArrayList commandLineOf(qint64 pid);

/// The profile under which a file manager of the pcmanfm family keeps its settings: the one that
/// its command line names, else "default".
[[nodiscard]] QString profileIn(const QByteArrayList& commandLine);

}  // namespace linux_desktop
