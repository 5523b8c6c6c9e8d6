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
  /// Gives it the keyboard past the window manager.
  void focus(xcb_window_t window, xcb_timestamp_t time);
  void moveToDesktop(xcb_window_t window, std::uint32_t desktop);
  /// Right above `sibling`; below everything when that is none.
  void restack(xcb_window_t window, xcb_window_t sibling);

  /// The marks stay on the windows, and the rest on the root window, when this process ends.
  void mark(xcb_window_t window, HiddenMark mark);
  void unmark(xcb_window_t window);
  /// The stacking order and who is to be active again; none of either forgets it.
  void remember(std::span<const xcb_window_t> bottomToTop, xcb_window_t active);

  void send();

 private:
  void remember(ClientAtom name, std::span<const xcb_window_t> windows);
  void message(xcb_window_t window, ClientAtom type, std::array<std::uint32_t, 5> data);

  ClientWindows& clients_;
};

}  // namespace linux_desktop
