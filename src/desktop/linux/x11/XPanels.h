#pragma once

#include <QGuiApplication>
#include <QRect>
#include <QScreen>
#include <optional>
#include <vector>

#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

/// The screen's part of the X root window.
[[nodiscard]] inline QRect pixelsOf(const QScreen& screen) {
  const QRect logical = screen.geometry();
  return {logical.topLeft(), logical.size() * screen.devicePixelRatio()};
}

/// The screen that holds the middle of a rectangle of the X root window; null where none does.
[[nodiscard]] inline const QScreen* screenOf(const QRect& pixels) {
  for (const QScreen* screen : QGuiApplication::screens()) {
    if (pixelsOf(*screen).contains(pixels.center())) return screen;
  }
  return nullptr;
}

/// A rectangle of the X root window in Qt's own coordinates, as far as `screen` decides them: Qt
/// leaves each screen's corner where it is in pixels and scales what lies in it. Null: as it is.
[[nodiscard]] inline QRect fromPixels(const QRect& pixels, const QScreen* screen) {
  if (pixels.isNull() || screen == nullptr) return pixels;
  const QPoint corner = screen->geometry().topLeft();
  const double ratio = screen->devicePixelRatio();
  return QRectF(QPointF(pixels.topLeft() - corner) / ratio + corner, QSizeF(pixels.size()) / ratio)
      .toRect();
}

/// A panel of the desktop as its window says: what is a dock or keeps a part of the screen free.
/// Rectangles are in pixels of the root window.
struct XPanel {
  /// None for one that a desktop shell draws, or a bar of the window manager's own that says
  /// nothing: those only show in what is left for windows.
  xcb_window_t window = XCB_NONE;
  QRect geometry;
  /// What the panel keeps free of windows; empty for one that hides itself or floats.
  QRect reserved;
  /// What the window says of its process; 0 where it says nothing.
  std::uint32_t pid = 0;
};

/// The panels as they stand now, those that are windows first: eight round trips and two more for
/// each panel; where the window manager lists none, one more for each window of the upper levels.
[[nodiscard]] std::vector<XPanel> panelsOn(XServer& server);

/// The part of the panel that another process draws: xfce4-panel and mate-panel run their tray
/// that way. Absent when that process has no window inside the panel.
[[nodiscard]] std::optional<QRect> partDrawnBy(std::uint32_t pid, const XPanel& panel,
                                               XServer& server);

}  // namespace linux_desktop
