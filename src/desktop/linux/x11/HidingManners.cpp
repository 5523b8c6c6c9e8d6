#include "desktop/linux/x11/HidingManners.h"

#include <algorithm>
#include <array>

namespace linux_desktop {
namespace {

struct Row {
  /// A part of the name: Marco calls itself "Metacity (Marco)", Muffin "Mutter (Muffin)", and
  /// Budgie's "Mutter(Budgie)".
  std::string_view name;
  HidingManners manners;
};

// The first whose name fits.
constexpr std::array kRows{
    Row{"KWin", {.firstWay = ShowWay::Map}}, Row{"Marco", {.firstWay = ShowWay::Map}},
    Row{"Mutter", {.firstWay = ShowWay::Activate}},
    Row{"GNOME Shell", {.firstWay = ShowWay::Activate}},
    Row{"herbstluftwm", {.firstWay = ShowWay::Map, .activates = true}},
    Row{"bspwm", {.activates = true}},
    // 1.3.5 puts each below where it is to be above, and lists them in the order of their age.
    Row{"Fluxbox", {.restacks = false, .activates = true}},
    Row{"Enlightenment", {.firstWay = ShowWay::Activate}}, Row{"i3", {.hides = false}},
    Row{"JWM", {.stacksDownwards = true}},  // 2.4
};

}  // namespace

HidingManners hidingMannersOf(std::string_view windowManager) {
  const auto* row = std::ranges::find_if(kRows, [windowManager](const Row& known) {
    return windowManager.find(known.name) != std::string_view::npos;
  });
  return row == kRows.end() ? HidingManners{} : row->manners;
}

}  // namespace linux_desktop
