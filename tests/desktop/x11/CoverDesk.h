#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "desktop/harness/DesktopConfiguration.h"
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
  explicit CoverDesk(const CoverDeskOptions& options)
      : XDesk({.windowManager = options.windowManager}),
        kind_(options.icons),
        swaps_(options.swaps) {
    writePng(harness::dusk(1280, 720), home().home() / "left.png");
    writePng(harness::meadow(1024, 600), home().home() / "right.png");
    if (!options.composited) stopCompositing();
    if (kind_ != DesktopIcons::None) configure();
    if (options.pattern) mustRun({"xsetroot", "-mod", "16", "24"});
    startIcons(kind_);
    bare_ = settled();
    isExact_ =
        kind_ != DesktopIcons::Xfdesktop || x().number(x().root(), "_XROOTPMAP_ID").has_value();
    if (kind_ != DesktopIcons::None) placeIcons();
    front = openWindow("front", {500, 250, 300, 150});
    (void)settled();
    front = windows().info(front.id).value();
    frontPixels_ = screen().area(front.area);
  }

  /// Starts the program, whose mode covers icons and does nothing else.
  void launch() {
    std::vector<std::string> features{"DesktopIcons"};
    if (swaps_) features.emplace_back("Wallpaper");
    program_.emplace(*this, features, harness::chosenPicture(bluePicture()));
  }
  /// By the program's shortcut, without waiting for anything.
  void toggle() { program_->press(); }
  /// Launches, and returns once each monitor has its cover.
  void startCovered() {
    launch();
    toggle();
    ASSERT_TRUE(until([&] { return everyMonitorIsCovered(); }));
  }
  /// The one that lies on the first monitor now.
  [[nodiscard]] xcb_window_t firstCover() const {
    for (const WindowInfo& window : covers())
      if (window.area.x == 0) return window.id;
    return XCB_NONE;
  }

  /// What the eye finds wrong on the monitors: "" when they show the desktop without icons, with
  /// the ordinary window above it as it was. To the pixel where the desktop offers its own picture;
  /// else at most one pixel in a hundred may be visibly unlike, in all and where the icons are.
  [[nodiscard]] std::string fault() const { return compare(screen().whole(), true); }
  /// Waits until the fault is gone; what remained else. Where the ordinary window is not on the
  /// screen, it is not looked for.
  [[nodiscard]] std::string faultAfterAWhile(bool frontShows = true) const {
    std::string last;
    until([&] { return (last = compare(screen().whole(), frontShows)).empty(); },
          std::chrono::seconds(5));
    return last;
  }

  /// Another program's window of icons there, without any: where there is a compositor one sees
  /// through it, as through those of shells that paint the picture themselves. It need not be on
  /// the screen yet.
  void openIconWindow(const Rect& area) {
    (void)x().open({.type = "DESKTOP", .area = area, .colour = {}});
  }

  /// Tells the desktop to show another picture.
  void changeWallpaper(const std::filesystem::path& picture) const {
    harness::configureIcons(*this, kind_, {{.picture = picture}, {.picture = picture}});
  }
  /// Blue all over.
  [[nodiscard]] std::string bluePicture() const { return picture("blue.png", 0x0000ff); }
  /// Whether two colours are to the eye the same: equal, or nearly so where they are not exact.
  [[nodiscard]] bool isAlike(std::uint32_t a, std::uint32_t b) const {
    return isExact_ ? a == b : harness::alike(a, b);
  }

  /// The first one is, to begin with.
  void makePrimary(int monitor) const {
    const std::string output = "VNC-" + std::to_string(monitor);
    mustRun({"xrandr", "--output", output, "--primary"});
  }
  /// Sets a property of the root window as a pager does, and waits for it.
  void setOnRoot(const char* property, std::uint32_t value) {
    x().askWindowManager(x().root(), property, {value, 0});
    EXPECT_TRUE(until([&] { return x().number(x().root(), property) == value; }));
  }

  /// Where icons are and the covers are to hide them, as they were before; empty where there were
  /// none.
  std::optional<Rect> iconArea;
  WindowInfo front;

 private:
  void configure() const {
    // Most draw a picture; the two of the file managers show that a colour is found as well.
    const bool isColour = kind_ == DesktopIcons::Pcmanfm || kind_ == DesktopIcons::PcmanfmQt;
    const std::filesystem::path folder = home().home();
    if (isColour) {
      harness::configureIcons(*this, kind_, {{.colour = "#204060"}, {.colour = "#604020"}});
    } else {
      harness::configureIcons(
          *this, kind_, {{.picture = folder / "left.png"}, {.picture = folder / "right.png"}});
    }
  }
  void stopCompositing() const {
    harness::setXfconf(*this, "xfwm4", "/general/use_compositing", "bool", "false");
    if (!until([&] { return !x().hasOwner("_NET_WM_CM_S0"); }))
      throw std::runtime_error("still composited");
  }
  void placeIcons() {
    std::ofstream(home().home() / "Desktop/a note.txt") << "note\n";
    const Rect all = x().screenArea();
    const auto shown = [&] { return changedArea(bare_, screen().area(all)).has_value(); };
    if (!until(shown)) throw std::runtime_error("no icon came");
    iconArea = changedArea(bare_, settled());
  }
  [[nodiscard]] std::string compare(const Image& now, bool frontShows) const {
    constexpr int kAround = 60;  // frame and shadow of a window
    const Rect around = frontShows
                            ? Rect{front.area.x - kAround, front.area.y - kAround,
                                   front.area.width + 2 * kAround, front.area.height + 2 * kAround}
                            : Rect{};
    std::size_t wrong = 0;
    std::size_t wrongAtIcons = 0;
    std::string first;
    for (int y = 0; y < bare_.height; ++y) {
      for (int x = 0; x < bare_.width; ++x) {
        if (around.contains(x, y) || isAlike(now.at(x, y), bare_.at(x, y))) continue;
        if (wrong++ == 0) first = std::to_string(x) + "," + std::to_string(y);
        if (iconArea && iconArea->contains(x, y)) ++wrongAtIcons;
      }
    }
    const auto isTooMuch = [this](std::size_t count, const Rect& of) {
      return count > (isExact_ ? 0 : static_cast<std::size_t>(of.width * of.height) / 100);
    };
    if (isTooMuch(wrong, x().screenArea()) || isTooMuch(wrongAtIcons, iconArea.value_or(Rect{})))
      return std::to_string(wrong) + " pixels differ, the first at " + first;
    if (frontShows && now.part(front.area) != frontPixels_) return "the window above is hidden";
    return {};
  }

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
