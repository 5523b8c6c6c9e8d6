#pragma once

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

}  // namespace linux_desktop
