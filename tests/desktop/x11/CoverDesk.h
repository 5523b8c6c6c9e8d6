#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "desktop/harness/ShortcutProgram.h"

namespace cover_test {

using harness::DesktopIcons;
using harness::Image;
using harness::Rect;
using harness::WindowInfo;
using harness::WindowManager;

struct CoverDeskOptions {
  WindowManager windowManager = WindowManager::None;
  DesktopIcons icons = DesktopIcons::None;
  /// False: xfwm4 is told not to composite, as it does by itself.
  bool composited = true;
  /// Shown by the root window, and named by nobody.
  bool pattern = false;
  /// The program's mode shows a wallpaper of its own as well, blue all over.
  bool swaps = false;
};

/// Two monitors with a wallpaper and icons on them, an ordinary window above, and Calmdeck, which
/// covers the icons.
class CoverDesk : public harness::XDesk {
 public:
  explicit CoverDesk(const CoverDeskOptions& options);

  /// Starts the program, whose mode covers icons and does nothing else.
  void launch();
  /// By the program's shortcut, without waiting for anything.
  void toggle() { program_->press(); }
  /// Launches, and returns once each monitor has its cover.
  void startCovered();
  /// The one that lies on the first monitor now.
  [[nodiscard]] xcb_window_t firstCover() const;

  /// What the eye finds wrong on the monitors: "" when they show the desktop without icons, with
  /// the ordinary window above it as it was. To the pixel where the desktop offers its own picture;
  /// else at most one pixel in a hundred may be visibly unlike, in all and where the icons are.
  [[nodiscard]] std::string fault() const;
  /// Waits until the fault is gone; what remained else. Where the ordinary window is not on the
  /// screen, it is not looked for.
  [[nodiscard]] std::string faultAfterAWhile(bool frontShows = true) const;

  /// Another program's window of icons there, without any: where there is a compositor one sees
  /// through it, as through those of shells that paint the picture themselves. It need not be on
  /// the screen yet.
  void openIconWindow(const Rect& area);

  /// Tells the desktop to show another picture.
  void changeWallpaper(const std::filesystem::path& picture) const;
  /// Blue all over.
  [[nodiscard]] std::string bluePicture() const { return picture("blue.png", 0x0000ff); }
  /// Whether two colours are to the eye the same: equal, or nearly so where they are not exact.
  [[nodiscard]] bool isAlike(std::uint32_t a, std::uint32_t b) const;

  /// The first one is, to begin with.
  void makePrimary(int monitor) const {
    const std::string output = "VNC-" + std::to_string(monitor);
    mustRun({"xrandr", "--output", output, "--primary"});
  }
  /// Sets a property of the root window as a pager does, and waits for it.
  void setOnRoot(const char* property, std::uint32_t value);

  /// Where icons are and the covers are to hide them, as they were before; empty where there were
  /// none.
  std::optional<Rect> iconArea;
  WindowInfo front;

 private:
  void configure() const;
  void stopCompositing() const;
  void placeIcons();
  [[nodiscard]] std::string compare(const Image& now, bool frontShows) const;

  DesktopIcons kind_;
  bool swaps_;
  /// Covers show the desktop's picture to the pixel: it offers that on the root window, as
  /// xfdesktop does up to 4.18.
  bool isExact_ = true;
  /// Without icons and windows.
  Image bare_;
  Image frontPixels_;
  std::optional<harness::ShortcutProgram> program_;
};

}  // namespace cover_test
