#pragma once

#include <QColor>
#include <QImage>
#include <QSizeF>

namespace linux_desktop {

/// The blurred picture of a rounded rectangle, and how far it reaches beyond it. In pixels.
struct SoftShadow {
  QImage image;
  int reach = 0;
};

/// A rounded rectangle of `size` in `color`, blurred by a Gaussian with the standard deviation
/// `deviation`; its top left corner is at (reach, reach) of the image. All lengths in pixels.
/// The last few are kept: asking again costs nothing. Main thread only.
[[nodiscard]] SoftShadow softShadow(QSizeF size, double cornerRadius, double deviation,
                                    const QColor& color);

}  // namespace linux_desktop
