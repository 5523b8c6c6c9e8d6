#pragma once

#include <cstdint>
#include <optional>

namespace linux_desktop {

/// A combination of `platform/carbon/KeyCodes.h` as Qt and KDE write it in one number. None for
/// what they would write in another way on each layout: keys of the block of digits, and Shift with
/// what is no letter.
[[nodiscard]] std::optional<int> qtKeyOf(std::uint32_t keyCode, std::uint32_t modifiers);

}  // namespace linux_desktop
