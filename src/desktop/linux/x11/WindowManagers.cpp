#include "desktop/linux/x11/WindowManagers.h"

#include <algorithm>
#include <array>

namespace linux_desktop {
namespace {

struct Row {
  /// A part of the name: Marco calls itself "Metacity (Marco)", Muffin "Mutter (Muffin)", and
  /// Budgie's "Mutter(Budgie)".
  std::string_view name;
  WindowManagerHabits habits;
};

// The first whose name fits.
constexpr std::array kRows{
    Row{"KWin",  // 5.27
        {.firstWay = ShowWay::Map, .movesWhatStandsRight = true, .paintsBackground = true}},
    Row{"Marco", {.firstWay = ShowWay::Map}},
    Row{"Muffin",  // 5.6
        {.firstWay = ShowWay::Activate,
         .minimisesLater = true,
         .paintsByArrival = true,
         .paintsBackground = true}},
    Row{"Mutter",
        {.firstWay = ShowWay::Activate, .minimisesLater = true, .paintsBackground = true}},
    Row{"GNOME Shell",
        {.firstWay = ShowWay::Activate, .minimisesLater = true, .paintsBackground = true}},
    Row{"Gala", {.paintsBackground = true}},
    Row{"herbstluftwm", {.firstWay = ShowWay::Map, .activates = true}},
    Row{"bspwm", {.activates = true}},
    // 1.3.5 puts each below where it is to be above, and lists them in the order of their age.
    Row{"Fluxbox", {.restacks = false, .activates = true}},
    Row{"Enlightenment", {.firstWay = ShowWay::Activate, .paintsBackground = true}},
    Row{"i3", {.hides = false}},
    // 0.17 lists what it does not show as hidden, and minimises by a hook that few configure.
    Row{"xmonad", {.hides = false}},
    // 2.4
    Row{"JWM", {.stacksDownwards = true}},
    // 4.3
    Row{"awesome", {.goesByTypeAlone = true}},
};

}  // namespace

WindowManagerHabits habitsOf(std::string_view windowManager) {
  const auto* row = std::ranges::find_if(kRows, [windowManager](const Row& known) {
    return windowManager.find(known.name) != std::string_view::npos;
  });
  return row == kRows.end() ? WindowManagerHabits{} : row->habits;
}

}  // namespace linux_desktop
