#pragma once

#include <QRect>
#include <QSize>

#include "desktop/linux/wallpaper/Backdrop.h"
#include "desktop/linux/wallpaper/BackdropManner.h"

namespace linux_desktop {

/// Where a picture of that size is drawn, scaled to that rectangle, so that it stands in `area` as
/// the style has it; may be larger than the area. For `Tiled` the first tile, for `None` nothing.
[[nodiscard]] QRect placedPicture(const QSize& picture, const QRect& area, BackdropStyle style,
                                  SizeRounding rounding);

}  // namespace linux_desktop
