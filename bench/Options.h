#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "desktop/harness/DesktopPrograms.h"

namespace bench {

/// How much is measured. A count of 0 leaves that measure out.
struct Options {
  int starts = 11;
  int switches = 31;
  std::chrono::seconds idle{60};
  int clicks = 1'000;
  int toggles = 10'000;
  int icons = 10'000;
  /// How often each shortcut is pressed.
  int shortcuts = 11;
  /// How often the mode is switched on and off, and how many windows other programs then have.
  int modes = 5;
  std::vector<int> windows{10, 50, 200};
  /// The same on each Wayland compositor that is installed, with fifty windows at most.
  int compositors = 5;
  harness::Panel panel = harness::Panel::XfcePanel;
};

/// Reads `--name number` and `--panel xfce4-panel|tint2`; one `--windows` takes the place of all.
/// Throws std::runtime_error with the usage for anything else.
[[nodiscard]] Options optionsOf(int argc, char** argv);

}  // namespace bench
