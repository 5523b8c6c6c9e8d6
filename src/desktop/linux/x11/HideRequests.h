#pragma once

#include <span>

#include "desktop/linux/x11/ClientWindows.h"

namespace linux_desktop {

/// What is asked of the window manager and noted on windows. Nothing is sent before `send`, and
/// nothing waits for an answer; windows that are gone are no harm.
class HideRequests {
 public:
  /// `clients` outlives this.
  explicit HideRequests(ClientWindows& clients) : clients_(clients) {}

  void minimise(xcb_window_t window);
  /// Takes the minimised state back, which not every window manager heeds.
  void restore(xcb_window_t window);
  void map(xcb_window_t window);
  void activate(xcb_window_t window, xcb_timestamp_t time);
  void moveToDesktop(xcb_window_t window, std::uint32_t desktop);
  /// Right above `sibling`; below everything when that is none.
  void restack(xcb_window_t window, xcb_window_t sibling);
  void raise(xcb_window_t window);

  /// The marks stay on the windows, and the order on the root window, when this process ends.
  void mark(xcb_window_t window, HiddenMark mark);
  void unmark(xcb_window_t window);
  void rememberOrder(std::span<const xcb_window_t> bottomToTop);

  void send();

 private:
  void message(xcb_window_t window, ClientAtom type, std::array<std::uint32_t, 5> data);

  ClientWindows& clients_;
};

}  // namespace linux_desktop
