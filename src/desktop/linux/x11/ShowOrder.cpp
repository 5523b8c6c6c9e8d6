#include "desktop/linux/x11/ShowOrder.h"

#include <algorithm>
#include <iterator>

namespace linux_desktop {
namespace {

/// The place above `sibling`; the bottom for none.
WindowOrder::const_iterator above(const WindowOrder& order, xcb_window_t sibling) {
  return sibling == XCB_NONE ? order.begin() : std::next(std::ranges::find(order, sibling));
}

}  // namespace

WindowOrder orderPutBack(const WindowOrder& current, const WindowSet& moved,
                         const WindowOrder& remembered) {
  const WindowSet known(remembered.begin(), remembered.end());
  const WindowSet present(current.begin(), current.end());
  WindowOrder order;
  std::ranges::copy_if(current, std::back_inserter(order), [&](xcb_window_t window) {
    return !moved.contains(window) || !known.contains(window);
  });
  xcb_window_t sibling = XCB_NONE;
  for (const xcb_window_t window : remembered) {
    if (!present.contains(window)) continue;
    if (moved.contains(window)) order.insert(above(order, sibling), window);
    sibling = window;
  }
  return order;
}

}  // namespace linux_desktop
