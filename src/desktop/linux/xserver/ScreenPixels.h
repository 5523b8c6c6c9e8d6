#pragma once

#include <QGuiApplication>
#include <QRect>
#include <QScreen>

namespace linux_desktop {

/// A rectangle of the X root window in Qt's own coordinates, as far as `screen` decides them: Qt
/// leaves each screen's corner where it is in pixels and scales what lies in it.
[[nodiscard]] inline QRect fromPixels(const QRect& pixels, const QScreen& screen) {
  if (pixels.isNull()) return {};
  const QPoint corner = screen.geometry().topLeft();
  const double ratio = screen.devicePixelRatio();
  return QRectF(QPointF(pixels.topLeft() - corner) / ratio + corner, QSizeF(pixels.size()) / ratio)
      .toRect();
}

/// The same by the screen that holds the rectangle's middle; as it is where none does.
[[nodiscard]] inline QRect fromPixels(const QRect& pixels) {
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect logical = screen->geometry();
    const QRect whole(logical.topLeft(), logical.size() * screen->devicePixelRatio());
    if (whole.contains(pixels.center())) return fromPixels(pixels, *screen);
  }
  return pixels;
}

}  // namespace linux_desktop
