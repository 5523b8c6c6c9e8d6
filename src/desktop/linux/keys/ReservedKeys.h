#pragma once

#include <cstdint>

namespace linux_desktop {

/// Whether a combination is left to the programs that people work with, so that it is no hot key:
/// Control alone with a key that every one of them uses for editing, and a key without any
/// modifier. A virtual key code and a mask of `platform/carbon/KeyCodes.h`.
[[nodiscard]] bool isReservedForPrograms(std::uint32_t keyCode, std::uint32_t modifiers);

}  // namespace linux_desktop
