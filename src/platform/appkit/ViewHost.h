#pragma once

#include <cstdint>

namespace platform {

class NSView;
class NSWindow;

/// What changed about a view; a set of bits.
enum class ViewChange : std::uint32_t {
  Layer = 1,       ///< the look of its layer, or its shadow
  Frame = 2,       ///< where it is or how large
  Subviews = 4,    ///< views were added to it or taken from it
  Content = 8,     ///< its text, image, title, state or border
  Hidden = 16,     ///< whether it is hidden
  Attributes = 32  ///< what assistive technology is told of it, or whether it is enabled
};

[[nodiscard]] constexpr ViewChange operator|(ViewChange a, ViewChange b) {
  return static_cast<ViewChange>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}
[[nodiscard]] constexpr bool includes(ViewChange set, ViewChange change) {
  return (static_cast<std::uint32_t>(set) & static_cast<std::uint32_t>(change)) != 0;
}

/// What a tree of views hangs in: told of every change, once for each setter call.
class ViewHost {
 public:
  virtual ~ViewHost() = default;
  virtual void viewDidChange(NSView& view, ViewChange change) = 0;
  [[nodiscard]] virtual NSWindow* window() = 0;
};

}  // namespace platform
