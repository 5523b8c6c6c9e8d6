#include "desktop/linux/wallpaper/BackdropGeometry.h"

#include <algorithm>
#include <cmath>

namespace linux_desktop {
namespace {

QRect centered(const QSize& size, const QRect& area) {
  // Half of an odd difference is cut towards zero, also where the picture is the larger one.
  return {area.topLeft() +
              QPoint((area.width() - size.width()) / 2, (area.height() - size.height()) / 2),
          size};
}

double quotient(int wanted, int present, SizeRounding rounding) {
  if (rounding == SizeRounding::DownInFloat)
    return static_cast<double>(static_cast<float>(wanted) / static_cast<float>(present));
  return static_cast<double>(wanted) / present;
}

int rounded(double length, SizeRounding rounding) {
  // A factor that was made by dividing can miss the whole number by the last bits.
  constexpr double kLastBits = 1e-9;
  switch (rounding) {
    case SizeRounding::Down:
      return static_cast<int>(length + kLastBits);
    case SizeRounding::DownInFloat:
    case SizeRounding::DownInDouble:
      return static_cast<int>(length);
    case SizeRounding::Nearest:
      return static_cast<int>(std::lround(length));
    case SizeRounding::Up:
      return static_cast<int>(std::ceil(length - kLastBits));
  }
  return 0;
}

QSize scaled(const QSize& picture, double factor, SizeRounding rounding) {
  return {std::max(1, rounded(picture.width() * factor, rounding)),
          std::max(1, rounded(picture.height() * factor, rounding))};
}

}  // namespace

QRect placedPicture(const QSize& picture, const QRect& area, BackdropStyle style,
                    SizeRounding rounding) {
  if (picture.isEmpty() || area.isEmpty()) return {};
  const double across = quotient(area.width(), picture.width(), rounding);
  const double down = quotient(area.height(), picture.height(), rounding);
  switch (style) {
    case BackdropStyle::None:
      return {};
    case BackdropStyle::Centered:
      return centered(picture, area);
    case BackdropStyle::Tiled:
      return {area.topLeft(), picture};
    case BackdropStyle::Stretched:
      return area;
    case BackdropStyle::Fitted:
      return centered(scaled(picture, std::min(across, down), rounding), area);
    case BackdropStyle::Zoomed:
      return centered(scaled(picture, std::max(across, down), rounding), area);
  }
  return {};
}

}  // namespace linux_desktop
