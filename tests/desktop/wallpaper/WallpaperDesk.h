#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/harness/DesktopConfiguration.h"
#include "desktop/harness/ShortcutProgram.h"

namespace wallpaper_test {

using harness::DesktopIcons;
using harness::Image;
using harness::Rect;

inline constexpr std::uint32_t kRed = 0xc02020;
inline constexpr std::uint32_t kGreen = 0x20a040;
inline constexpr std::uint32_t kBlue = 0x2040c0;
inline constexpr std::uint32_t kYellow = 0xe0c020;

/// A private desktop, and the program on it, whose mode shows a yellow picture on every monitor.
class WallpaperDesk : public harness::XDesk {
 public:
  /// With the window manager that goes with the icons, which do not run yet.
  explicit WallpaperDesk(DesktopIcons icons, harness::DeskOptions options = {},
                         const std::string& chosen = kAnyName)
      : XDesk(withManagerOf(icons, std::move(options))),
        icons_(icons),
        chosen_(picture(chosen, kYellow)) {}

  void startIcons() { XDesk::startIcons(icons_); }
  void launch() {
    program_.emplace(*this, std::vector<std::string>{"Wallpaper"}, harness::chosenPicture(chosen_));
  }
  [[nodiscard]] harness::ShortcutProgram& program() { return *program_; }
  void toggle() { program_->toggle(); }
  /// Every monitor shows the chosen picture then.
  void swap() {
    toggle();
    for (int monitor = 0; monitor < std::ssize(server().monitors()); ++monitor)
      EXPECT_TRUE(shows(monitor, kYellow)) << monitor << program_->printed();
  }

  /// Waits until the middle of a monitor, counted from 0, has that colour, give or take a little.
  [[nodiscard]] bool shows(int monitor, std::uint32_t colour) const {
    const Rect area = server().monitors().at(static_cast<std::size_t>(monitor));
    return until(
        [&] { return harness::alike(screen().pixel(area.centreX(), area.centreY()), colour); });
  }
  /// All that the desktop keeps of its backdrops.
  [[nodiscard]] std::string backdrops() const { return harness::backdropSettings(*this, icons_); }
  /// Waits until they are these again.
  [[nodiscard]] bool settles(const std::string& before) const {
    return until([&] { return backdrops() == before; });
  }

  /// With what has a meaning to some desktop, bus or shell.
  static constexpr const char* kAnyName = "a \"b\" it's %20 100% \xc3\xa4\xe5\xb1\xb1.png";

 private:
  static harness::DeskOptions withManagerOf(DesktopIcons icons, harness::DeskOptions options) {
    options.windowManager = harness::WindowManager::Openbox;
    if (icons == DesktopIcons::Xfdesktop) options.windowManager = harness::WindowManager::Xfwm4;
    if (icons == DesktopIcons::Caja) options.windowManager = harness::WindowManager::Marco;
    return options;
  }

  DesktopIcons icons_;
  std::string chosen_;
  std::optional<harness::ShortcutProgram> program_;
};

}  // namespace wallpaper_test
