#pragma once

#include <cstdint>
#include <optional>
#include <string>
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
class WallpaperDesk {
 public:
  /// With the window manager that goes with the icons, which do not run yet.
  explicit WallpaperDesk(DesktopIcons icons, harness::DeskOptions options = {},
                         const std::string& chosen = kAnyName);

  [[nodiscard]] harness::XDesk& desk() { return desk_; }
  [[nodiscard]] const harness::XDesk& desk() const { return desk_; }
  [[nodiscard]] harness::ShortcutProgram& program() { return *program_; }
  [[nodiscard]] const std::string& chosen() const { return chosen_; }

  void startIcons() { desk_.startIcons(icons_); }
  void launch() {
    program_.emplace(desk_, std::vector<std::string>{"Wallpaper"}, harness::chosenPicture(chosen_));
  }
  void toggle() { program_->toggle(); }
  /// Every monitor shows the chosen picture then.
  void swap();

  [[nodiscard]] std::string picture(const std::string& name, std::uint32_t colour) const {
    return desk_.picture(name, colour);
  }
  /// Waits until the middle of a monitor, counted from 0, has that colour, give or take a little.
  [[nodiscard]] bool shows(int monitor, std::uint32_t colour);
  /// What each monitor shows at rest; between them lies what nobody sees.
  [[nodiscard]] std::vector<Image> monitors();
  /// All that the desktop keeps of its backdrops.
  [[nodiscard]] std::string settings() const { return harness::backdropSettings(desk_, icons_); }
  /// Waits until they are these again.
  [[nodiscard]] bool settles(const std::string& before) const {
    return desk_.until([&] { return settings() == before; });
  }

  /// Standard output of a program, which must end well.
  std::string run(const std::vector<std::string>& argv) const;
  /// Stops the process that owns a name on the bus, or lets it go on.
  void hold(const std::string& busName, bool hung);

  /// With what has a meaning to some desktop, bus or shell.
  static constexpr const char* kAnyName = "a \"b\" it's %20 100% \xc3\xa4\xe5\xb1\xb1.png";

 private:
  harness::XDesk desk_;
  DesktopIcons icons_;
  std::string chosen_;
  std::optional<harness::ShortcutProgram> program_;
};

}  // namespace wallpaper_test
