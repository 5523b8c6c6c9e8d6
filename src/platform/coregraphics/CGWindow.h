#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/Value.h"
#include "platform/port/Screens.h"

namespace platform {

using CGWindowID = std::uint32_t;
using CGWindowLevel = std::int32_t;

// Keys of a window's description.
inline constexpr std::string_view kCGWindowOwnerName = "kCGWindowOwnerName";
inline constexpr std::string_view kCGWindowName = "kCGWindowName";
inline constexpr std::string_view kCGWindowNumber = "kCGWindowNumber";

/// Keys of window levels, with the platform's numbers.
enum class CGWindowLevelKey { BackstopMenu = 3, Normal = 4 };

/// The level of that key, with the platform's values: higher is in front. The backstop menu level
/// is above the desktop's icons and below every normal window.
[[nodiscard]] CGWindowLevel CGWindowLevelForKey(CGWindowLevelKey key);

/// A captured picture.
using CGImage = std::shared_ptr<const port::Capture>;

/// The windows on the screen, front to back (option 1, relative to none). None when the list cannot
/// be had. Main thread only.
[[nodiscard]] std::optional<std::vector<Dictionary>> CGWindowListCopyWindowInfo();

/// What that window shows, by itself (list option 8), as large as it is, at the best resolution
/// (image option 8). Null when it cannot be captured. Main thread only.
[[nodiscard]] CGImage CGWindowListCreateImage(CGWindowID window);

[[nodiscard]] inline bool CGRectEqualToRect(const NSRect& a, const NSRect& b) {
  return a == b;
}

}  // namespace platform
