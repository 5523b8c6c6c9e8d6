#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

#include "desktop/linux/wallpaper/Backdrop.h"

namespace linux_desktop {

/// Where a picture of that size is drawn, scaled to that rectangle, so that it stands in `area` as
/// the style has it; may be larger than the area. For `Tiled` the first tile, for `None` nothing.
[[nodiscard]] QRect placedPicture(const QSize& picture, const QRect& area, BackdropStyle style,
                                  SizeRounding rounding);

/// What a picture is laid out on, and how.
struct BackdropLayout {
  /// The rectangle around all monitors.
  QRect desktop;
  BackdropManner manner = {};
  QSize lastMonitor = {};

  bool operator==(const BackdropLayout&) const = default;
};

/// The backdrop as the desktop draws it on `monitor`, opaque and of the monitor's size in pixels.
/// Where the picture cannot be read the colours are all there is. On any thread; takes as long as
/// the picture takes to be read.
[[nodiscard]] QImage renderBackdrop(const Backdrop& backdrop, const Monitor& monitor,
                                    const BackdropLayout& layout);

}  // namespace linux_desktop
