#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>

#include "desktop/wayland/ModeDesk.h"

using harness::Compositor;
using harness::Image;
using harness::plain;
using harness::Process;
using harness::Rect;
using harness::WaylandDesk;
using harness::WaylandOutput;
using namespace std::chrono_literals;

namespace {

constexpr int kWidth = WaylandDesk::kOutputWidth;
constexpr int kHeight = WaylandDesk::kOutputHeight;
/// Where no panel of ours stands.
constexpr Rect kStrip{0, kHeight - 100, kWidth, 100};
/// Of the desktop on the first monitor, as the stand-in has it.
constexpr std::uint32_t kColour = 0x20a040;
constexpr std::uint32_t kIcons = 0xff00ff;
constexpr std::uint32_t kOther = 0x305070;
// Whoever runs the test may use the X server. The rest is for those that are plugged in. Plasma
// does not tell of a wallpaper on the last one.
const std::string kForSway =
    "exec xhost +local:\n"
    "output HEADLESS-3 resolution 1280x720 position 2560 0\n"
    "output HEADLESS-4 resolution 1280x720 position 3840 0\n";

/// No pixel is like its neighbours, so that none may be moved or mixed with them.
Image fine() {
  Image image{kWidth, kHeight, {}};
  for (std::uint32_t y = 0; y < kHeight; ++y) {
    for (std::uint32_t x = 0; x < kWidth; ++x)
      image.pixels.push_back((x * 37 & 255) << 16 | (y * 53 & 255) << 8 | ((x ^ y) * 91 & 255));
  }
  return image;
}

/// Monitors with a wallpaper on them, of one colour and then of fine detail, and Calmdeck, whose
/// mode covers icons and does nothing else. Icons are one colour all over each monitor.
class WaylandCoverTest : public testing::TestWithParam<Compositor>, public wayland_test::ModeDesk {
 protected:
  explicit WaylandCoverTest(bool ofX11 = false)
      : ModeDesk({.compositor = GetParam(),
                  .xwayland = ofX11,
                  .configuration = GetParam() == Compositor::Sway ? kForSway : std::string()}) {
    environment["XDG_CURRENT_DESKTOP"] = "KDE";
    environment["QT_LOGGING_RULES"] = "calmdeck.wallpaper.debug=true";
    if (ofX11) environment["QT_QPA_PLATFORM"] = "xcb";
  }

  void SetUp() override {
    harness::writePng(fine(), desk.home().home() / "fine.png");
    startShell("fine.png");
    ASSERT_TRUE(!environment.contains("QT_QPA_PLATFORM") || desk.until([&] {
      return desk.run({"xset", "q"}).succeeded();
    }));
    launch("DesktopIcons");
  }

  void startShell(const std::string& name, const harness::Environment& extra = {}) {
    shell = desk.start({PLASMA_STAND_IN, desk.home().home() / name}, extra);
    ASSERT_TRUE(shell->waitForLine("^ready$")) << shell->errorOutput();
  }
  /// Returns once they are there, seen or not.
  void startIcons() {
    // A name by which nobody knows it for what it is.
    const std::filesystem::path copy = desk.home().runtime() / "icons";
    std::filesystem::copy_file("/usr/bin/swaybg", copy,
                               std::filesystem::copy_options::skip_existing);
    const std::filesystem::path file = desk.home().home() / "icons.png";
    harness::writePng(plain(kIcons, kWidth, kHeight), file);
    icons_ = desk.start({copy, "-o", "*", "-m", "stretch", "-i", file}, {{"WAYLAND_DEBUG", "1"}});
    for ([[maybe_unused]] const WaylandOutput& output : desk.outputs())
      ASSERT_TRUE(icons_->complains("attach\\(wl_buffer"));
  }
  [[nodiscard]] Image strip(std::size_t monitor) {
    const auto all = desk.outputs();
    return monitor < all.size() ? desk.pixelsOf(all[monitor]).part(kStrip) : Image();
  }
  [[nodiscard]] bool shows(std::size_t monitor, const Image& wanted) {
    return desk.until([&] { return strip(monitor) == wanted; });
  }
  /// Nor is any monitor seen black before.
  [[nodiscard]] bool comesAs(std::size_t monitor, const Image& wanted) {
    bool isBlack = false;
    const bool comes = desk.until([&] {
      const Image now = strip(monitor);
      isBlack = isBlack || now == empty || strip(0) == empty;
      return now == wanted;
    });
    return comes && !isBlack;
  }

  const Image empty = plain(0, kStrip.width, kStrip.height);
  const Image colour = plain(kColour, kStrip.width, kStrip.height);
  const Image picture = fine().part(kStrip);
  const Image icons = plain(kIcons, kStrip.width, kStrip.height);
  std::unique_ptr<Process> shell;

 private:
  std::unique_ptr<Process> icons_;
};

INSTANTIATE_TEST_SUITE_P(On, WaylandCoverTest, testing::ValuesIn(harness::installedCompositors()),
                         testing::PrintToStringParamName());

TEST_P(WaylandCoverTest, StandsAboveIconsThatComeLaterAndBelowWindows) {
  toggle();
  ASSERT_TRUE(shows(0, colour) && shows(1, picture));
  startIcons();
  EXPECT_EQ(desk.screen().settled(kStrip, 200ms, 5s), colour);
  EXPECT_FALSE(desk.areaOf(kIcons));
  toggle();
  EXPECT_TRUE(shows(0, icons) && shows(1, icons));
  toggle();
  ASSERT_TRUE(shows(0, colour) && shows(1, picture));
  // Throws where it is not to be seen.
  desk.openWindow("figures", 0xc02030);
}

TEST_P(WaylandCoverTest, HasTheMonitorsOwnPixelsAtAnyScale) {
  startIcons();
  const std::string second = desk.outputs()[1].name;
  desk.scale(second, GetParam() == Compositor::Kwin ? 1.5 : 2);
  toggle();
  EXPECT_TRUE(shows(1, picture));
  desk.scale(second, 1);
  EXPECT_TRUE(shows(1, picture));
}

TEST_P(WaylandCoverTest, ComesToAMonitorThatComesAndIsNeverSeenEmpty) {
  startIcons();
  toggle();
  ASSERT_TRUE(shows(0, colour) && shows(1, picture));
  if (const std::string second = desk.outputs()[1].name; desk.turnOff(second)) {
    ASSERT_TRUE(shows(0, colour));
    desk.turnOn(second);
    EXPECT_TRUE(shows(1, picture));
    return;
  }
  desk.mustRun({"swaymsg", "create_output"});
  EXPECT_TRUE(comesAs(2, picture));
  desk.mustRun({"swaymsg", "create_output"});
  EXPECT_TRUE(shows(3, empty));
  EXPECT_TRUE(shows(0, colour) && shows(1, picture) && shows(2, picture));
}

TEST_P(WaylandCoverTest, StaysWhenTheCompositorReadsItsConfigurationAnew) {
  startIcons();
  toggle();
  ASSERT_TRUE(shows(0, colour) && shows(1, picture));
  desk.reload();
  EXPECT_EQ(desk.screen().settled(kStrip, 500ms, 5s), colour);
  EXPECT_TRUE(shows(1, picture));
  EXPECT_FALSE(desk.areaOf(kIcons));
  toggle();
  EXPECT_TRUE(shows(0, icons) && shows(1, icons));
}

TEST_P(WaylandCoverTest, KeepsItsPictureWhileADesktopThatStartsAnewDoesNotAnswer) {
  toggle();
  ASSERT_TRUE(shows(0, colour) && shows(1, picture));
  shell->kill();
  harness::writePng(plain(kOther, kWidth, kHeight), desk.home().home() / "other.png");
  startShell("other.png", {{"STAND_IN_STOPS", "1"}});
  ASSERT_TRUE(program->complains("does not answer"));
  EXPECT_EQ(desk.screen().settled(kStrip, 500ms, 5s), colour);
  EXPECT_TRUE(shows(1, picture));
  shell->signal(SIGCONT);
  EXPECT_TRUE(shows(1, plain(kOther, kStrip.width, kStrip.height)));
}

/// Without Qt's plugin for Wayland.
class XProgramCoverTest : public WaylandCoverTest {
 protected:
  XProgramCoverTest() : WaylandCoverTest(true) {}
};

INSTANTIATE_TEST_SUITE_P(On, XProgramCoverTest, testing::ValuesIn(harness::installedCompositors()),
                         testing::PrintToStringParamName());

TEST_P(XProgramCoverTest, CoversOnlyWhereNoWindowWouldBeUnderIt) {
  startIcons();
  toggle();
  ASSERT_TRUE(desk.until([&] { return reader.shows("Presentation mode", {}, "checked"); }));
  if (GetParam() == Compositor::Kwin) {
    EXPECT_TRUE(shows(0, colour) && shows(1, picture));
  } else {
    EXPECT_EQ(desk.screen().settled(kStrip, 500ms, 5s), icons);
    EXPECT_THAT(program->errorOutput(), testing::HasSubstr("desktop icons are not covered"));
  }
  EXPECT_THAT(program->errorOutput(), testing::HasSubstr("qt6-wayland"));
}

}  // namespace
