#pragma once

#include <cstdint>

#include "platform/foundation/Geometry.h"

namespace platform {

/// Kinds of events, with the platform's numbers.
enum class NSEventType : std::uint32_t {
  LeftMouseDown = 1,
  LeftMouseUp = 2,
  RightMouseDown = 3,
  RightMouseUp = 4,
};

/// A set of event kinds: bit n stands for the kind with number n.
using NSEventMask = std::uint64_t;

[[nodiscard]] constexpr NSEventMask maskOf(NSEventType type) {
  return NSEventMask{1} << static_cast<std::uint32_t>(type);
}

/// Something that the user did. A value.
struct NSEvent {
  NSEventType type = NSEventType::LeftMouseUp;
  /// Where the pointer was, in the coordinates of the window; the origin where that is not known.
  NSPoint locationInWindow;
};

}  // namespace platform
