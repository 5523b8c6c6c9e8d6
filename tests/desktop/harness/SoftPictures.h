#pragma once

#include <cstdint>
#include <vector>

#include "desktop/harness/Screen.h"

namespace harness {

/// Pictures for desktops: soft, so that whatever stands on one shows by its edges. Every row has
/// one colour.
[[nodiscard]] Image dusk(int width, int height);
[[nodiscard]] Image meadow(int width, int height);

/// Whether anything with sharp edges, an icon or its name, is to be seen in an image that is
/// otherwise one of these pictures. What lies in `apart`, in the image's own coordinates, does not
/// count.
[[nodiscard]] bool showsIcons(const Image& image, const std::vector<Rect>& apart = {});

/// True when no channel of two colours differs by more than a scaler's rounding can make it.
[[nodiscard]] bool alike(std::uint32_t one, std::uint32_t other);

}  // namespace harness
