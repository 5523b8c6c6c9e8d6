#pragma once

#include <cstdint>
#include <string_view>

namespace linux_desktop {

/// How a window manager is asked for a window that it has minimised, the gentlest first.
enum class ShowWay : std::uint8_t { RemoveState, Map, Activate };

/// What window managers do each in their own way.
struct WindowManagerHabits {
  /// The gentlest way that it heeds; asking in another would only cost the wait for it.
  ShowWay firstWay = ShowWay::RemoveState;
  /// Whether it means it when it says that it knows hidden windows.
  bool hides = true;
  /// Tells its turn before it has minimised what it was asked to: it does that beside its painting.
  bool minimisesLater = false;
  /// Whether it lists the stacking order from the top down, which EWMH 1.5 has the other way round.
  bool stacksDownwards = false;
  /// Whether it puts windows above others as it is asked, and tells their real order.
  bool restacks = true;
  /// Puts one that is asked for above the window under it, where it is already, below all others.
  bool movesWhatStandsRight = false;
  /// Where no order can be put back: whether the window that was active is activated all the same,
  /// which raises it. The others get the keyboard past the window manager, and some take it back.
  bool activates = false;
  /// Whatever the order of windows is, icons are painted over a cover that was there first.
  bool paintsByArrival = false;
  /// Frames what belongs to another window, and has what is to be below others above panels.
  bool goesByTypeAlone = false;
  /// Composes the whole screen and paints a background of its own over the root window's.
  bool paintsBackground = false;
};

/// Those of a window manager, by what it calls itself; the usual ones for one that nobody knows.
[[nodiscard]] WindowManagerHabits habitsOf(std::string_view windowManager);

}  // namespace linux_desktop
