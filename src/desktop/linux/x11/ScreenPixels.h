#pragma once

#include <QGuiApplication>
#include <QRect>
#include <QScreen>

namespace linux_desktop {

/// The screen that holds the middle of a rectangle of the X root window; null where none does.
[[nodiscard]] inline const QScreen* screenOf(const QRect& pixels) {
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect logical = screen->geometry();
    const QRect whole(logical.topLeft(), logical.size() * screen->devicePixelRatio());
    if (whole.contains(pixels.center())) return screen;
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

}  // namespace linux_desktop
