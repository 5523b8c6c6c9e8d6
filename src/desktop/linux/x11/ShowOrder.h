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

}  // namespace linux_desktop
