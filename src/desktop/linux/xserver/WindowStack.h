#pragma once

#include <QRect>
#include <vector>

#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

/// The windows on the screen at one moment, bottom to top. Unmapped ones are not among them.
struct WindowStack {
  struct TopLevel {
    xcb_window_t window = XCB_NONE;
    /// In pixels of the root window.
    QRect area;
    bool overrideRedirect = false;
  };
  /// A window of the type DESKTOP: somebody's icons, or one of our covers.
  struct DesktopWindow {
    xcb_window_t window = XCB_NONE;
    QRect area;
    /// Which of `topLevels` holds it or is it.
    std::size_t level = 0;
    bool ours = false;

    /// Whether it is the desktop of that monitor, which a small one, a clock's say, is not. Window
    /// managers may keep it out of the panels' way.
    [[nodiscard]] bool covers(const QRect& monitor) const;
  };

  std::vector<TopLevel> topLevels;
  std::vector<DesktopWindow> desktopWindows;

  /// Asks in a handful of round trips, but a thousand requests where there are many windows.
  [[nodiscard]] static WindowStack read(XServer& server);

  /// The topmost of the icon windows that shows on part of `area`; null when there is none.
  [[nodiscard]] const DesktopWindow* iconsOn(const QRect& area) const;
  /// The topmost of those that cover `monitor`; null where its root window shows.
  [[nodiscard]] const DesktopWindow* desktopOn(const QRect& monitor) const;
};

}  // namespace linux_desktop
