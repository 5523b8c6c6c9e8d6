#pragma once

#include <QImage>
#include <string>

#include "desktop/harness/Screen.h"

namespace wallpaper_test {

/// A picture with soft and sharp parts and some noise, the same each time. The sizes of the tests
/// are no multiples of any monitor's.
[[nodiscard]] QImage photograph(int width, int height);

/// How many of a hundred pixels of two pictures of one size differ by more than 8 of 255 in any
/// colour; 100 for pictures of different sizes.
[[nodiscard]] double percentApart(const QImage& picture, const harness::Image& screen);

}  // namespace wallpaper_test
