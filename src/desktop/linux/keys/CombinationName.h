#pragma once

#include <cstdint>
#include <string>

namespace linux_desktop {

/// A combination as people here read it, "Control+Alt+p"; of `platform/carbon/KeyCodes.h`.
[[nodiscard]] std::string combinationName(std::uint32_t keyCode, std::uint32_t modifiers);

}  // namespace linux_desktop
