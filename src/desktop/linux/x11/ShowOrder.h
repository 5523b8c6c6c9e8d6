#pragma once

#include <xcb/xcb.h>

#include <span>
#include <unordered_set>
#include <vector>

namespace linux_desktop {

/// Windows, bottom to top.
using WindowOrder = std::vector<xcb_window_t>;
using WindowSet = std::unordered_set<xcb_window_t>;

/// `current` with the windows `moved` in it put back to where `remembered` has them: each above the
/// window that was under it then, or under that one. The others keep their order; those that came
/// after `remembered` stay on top.
[[nodiscard]] WindowOrder orderPutBack(const WindowOrder& current, const WindowSet& moved,
                                       const WindowOrder& remembered);

struct Restacking {
  xcb_window_t window;
  /// The one to put it above; none: below everything.
  xcb_window_t sibling;
  bool operator==(const Restacking&) const = default;
};

/// Moves of windows in `moved`, one after another, that make `wanted` of `current`; none of those
/// that are in their place. Both hold the same windows, and the rest of them in the same order.
[[nodiscard]] std::vector<Restacking> restackings(WindowOrder current, const WindowSet& moved,
                                                  const WindowOrder& wanted);

}  // namespace linux_desktop
