#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <map>
#include <thread>

#include "desktop/wayland/ModeDesk.h"

using harness::Compositor;
using harness::ForeignWindow;

namespace {

constexpr std::uint32_t kRed = 0xd02010;
constexpr std::uint32_t kGreen = 0x10c020;
constexpr std::uint32_t kBlue = 0x1020e0;
constexpr std::uint32_t kWhite = 0xf0f8ff;
constexpr std::uint32_t kYellow = 0xe0d000;

/// Foreign windows, and the program, whose mode hides them and does nothing else.
class WaylandHidingTest : public testing::TestWithParam<Compositor>, public wayland_test::ModeDesk {
 protected:
  WaylandHidingTest()
      : ModeDesk({.compositor = GetParam(),
                  .configuration =
                      harness::allInTheMiddle(GetParam(), "^(red|green|blue|white|yellow)$")}) {
    start();
  }

  void start() {
    launch("HideActiveApps");
    EXPECT_TRUE(hasTheKeyboard("Calmdeck"));
    desk.input().key("Escape");
    EXPECT_TRUE(desk.until([&] { return !isActive("Calmdeck"); }));
  }
  /// Of the program's own windows.
  [[nodiscard]] bool isActive(const std::string& title) const {
    return reader.shows(title, "frame", "active");
  }
  [[nodiscard]] bool hasTheKeyboard(const std::string& title) {
    return desk.until([&] { return isActive(title); });
  }

  /// How many pixels each of the first four windows shows.
  using Seen = std::map<std::uint32_t, std::ptrdiff_t>;
  static inline const Seen kNothing{{kRed, 0}, {kGreen, 0}, {kBlue, 0}, {kWhite, 0}};
  [[nodiscard]] Seen seen() const {
    Seen counts = kNothing;
    const harness::Image image = desk.screen().whole();
    for (auto& [colour, count] : counts) count = std::ranges::count(image.pixels, colour);
    return counts;
  }
  bool isSeen(std::uint32_t colour) { return desk.areaOf(colour).has_value(); }
  [[nodiscard]] bool becomesSeen(const ForeignWindow& window) {
    return desk.until([&] { return isSeen(window.colour); });
  }
  /// Whether what is typed goes there; typed until it does, since the keyboard moves on its own.
  [[nodiscard]] bool getsTheKeyboard(ForeignWindow& window) {
    return desk.until([&] {
      desk.input().key("k");
      return window.process->waitForLine("^key k$", std::chrono::milliseconds(300)).has_value();
    });
  }
  /// And waits until it is gone from the screen.
  void close(ForeignWindow& window) {
    window.process->terminate();
    EXPECT_TRUE(desk.until([&] { return !isSeen(window.colour); }));
  }
  /// Does nothing on sway, which knows no such thing.
  void minimise(ForeignWindow& window) {
    if (GetParam() == Compositor::Sway) return;
    EXPECT_TRUE(getsTheKeyboard(window));
    desk.input().key("F5");
    EXPECT_TRUE(desk.until([&] { return !isSeen(window.colour); }));
  }
};

INSTANTIATE_TEST_SUITE_P(Compositors, WaylandHidingTest,
                         testing::ValuesIn(harness::installedCompositors()),
                         testing::PrintToStringParamName());

TEST_P(WaylandHidingTest, BringsAllBackInItsOrderUnderWhatWasOpenedMeanwhile) {
  ForeignWindow& red = desk.openWindow("red", kRed);
  ForeignWindow& green = desk.openWindow("green", kGreen);
  minimise(green);
  ForeignWindow& blue = desk.openWindow("blue", kBlue);
  ForeignWindow& white = desk.openWindow("white", kWhite);
  ASSERT_TRUE(getsTheKeyboard(white));
  const Seen before = seen();
  ASSERT_LT(before.at(kBlue), before.at(kWhite)) << "no window is over another";
  ASSERT_LT(before.at(kRed), before.at(kWhite)) << "no window is over another";

  desk.toggleMode();
  ASSERT_TRUE(desk.until([&] { return seen() == kNothing; }));
  ForeignWindow& yellow = desk.openWindow("yellow", kYellow);
  ASSERT_TRUE(getsTheKeyboard(yellow));

  desk.toggleMode();
  // Elsewhere it lies exactly over them.
  if (GetParam() == Compositor::Kwin) {
    ASSERT_TRUE(desk.until([&] { return seen() != kNothing; }));
  }
  EXPECT_TRUE(getsTheKeyboard(yellow));
  close(yellow);
  EXPECT_TRUE(desk.until([&] { return seen() == before; })) << testing::PrintToString(seen());
  if (GetParam() == Compositor::Sway) return;
  // What was minimised before is so still, and not only covered.
  for (ForeignWindow* window : {&white, &blue, &red}) close(*window);
  EXPECT_EQ(seen(), kNothing);
}

TEST_P(WaylandHidingTest, GivesTheKeyboardBackWhereNoneWasOpenedMeanwhile) {
  desk.openWindow("red", kRed);
  ForeignWindow& blue = desk.openWindow("blue", kBlue);
  ASSERT_TRUE(getsTheKeyboard(blue));
  for (int round = 0; round < 2; ++round) {
    desk.toggleMode();
    ASSERT_TRUE(desk.until([&] { return !isSeen(kBlue) && !isSeen(kRed); }));
    desk.toggleMode();
    ASSERT_TRUE(becomesSeen(blue));
    EXPECT_TRUE(getsTheKeyboard(blue));
  }
}

TEST_P(WaylandHidingTest, StaysAndEndsAlsoWhenTheCompositorReadsItsConfigurationAnew) {
  desk.openWindow("red", kRed);
  ForeignWindow& blue = desk.openWindow("blue", kBlue);
  desk.toggleMode();
  ASSERT_TRUE(desk.until([&] { return !isSeen(kBlue) && !isSeen(kRed); }));
  desk.reload();
  const harness::Rect all{0, 0, harness::WaylandDesk::kOutputWidth,
                          harness::WaylandDesk::kOutputHeight};
  (void)desk.screen().settled(all, std::chrono::milliseconds(500));
  EXPECT_EQ(seen(), kNothing);
  desk.toggleMode();
  EXPECT_TRUE(becomesSeen(blue));
  close(blue);
  EXPECT_TRUE(desk.until([&] { return isSeen(kRed); }));
}

/// Which hides by an empty workspace on each monitor. Not every release has one.
class SwayHidingTest : public WaylandHidingTest {
 protected:
  void sway(const std::string& command) { desk.mustRun({"swaymsg", command}); }
};

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SwayHidingTest);
INSTANTIATE_TEST_SUITE_P(Compositors, SwayHidingTest,
                         testing::ValuesIn(harness::installedOf({Compositor::Sway})),
                         testing::PrintToStringParamName());

TEST_P(SwayHidingTest, EachMonitorTurnsToAnEmptyWorkspaceAndExactlyBack) {
  desk.openWindow("sticky", kRed);
  ForeignWindow& tiled = desk.openWindow("tiled", kBlue);
  sway("focus output HEADLESS-2");
  desk.openWindow("elsewhere", kWhite);
  sway("[app_id=\"sticky\"] floating enable, sticky enable, move position 40 30, focus");
  desk.input().moveTo(harness::WaylandDesk::kOutputWidth - 50,
                      harness::WaylandDesk::kOutputHeight - 50);
  sway("[app_id=\"sticky\"] focus");
  constexpr int kBorder = 2;
  ASSERT_TRUE(desk.until([&] {
    const auto sticky = desk.areaOf(kRed);
    return sticky && sticky->x == 40 + kBorder;
  }));
  const auto places = [&] {
    return std::vector{desk.areaOf(kRed), desk.areaOf(kBlue), desk.areaOf(kWhite)};
  };
  const auto before = places();

  desk.toggleMode();
  EXPECT_TRUE(desk.until([&] { return seen() == kNothing; }));
  desk.toggleMode();
  EXPECT_TRUE(desk.until([&] { return places() == before; }));
  // The pointer has not been taken along to another monitor, nor to what has the focus.
  desk.input().press(harness::Button::Left);
  desk.input().release(harness::Button::Left);
  EXPECT_TRUE(tiled.process->waitForLine("^press$"));
  // What was everywhere is so again.
  sway("workspace 9");
  EXPECT_TRUE(desk.until([&] { return isSeen(kRed) && !isSeen(kBlue); }));
}

TEST_P(WaylandHidingTest, HappensOnceACompositorThatStoodStillGoesOn) {
  const ForeignWindow& blue = desk.openWindow("blue", kBlue);
  for (const bool hidden : {true, false}) {
    desk.compositor().signal(SIGSTOP);
    desk.toggleMode();
    // As long as nobody waits for it any more.
    std::this_thread::sleep_for(std::chrono::milliseconds(2500));
    desk.compositor().signal(SIGCONT);
    EXPECT_TRUE(desk.until([&] { return isSeen(blue.colour) != hidden; }));
  }
  EXPECT_THAT(program->errorOutput(), testing::Not(testing::HasSubstr("minimised")));
}

/// Where a mark can be kept on windows.
class WaylandMarksTest : public WaylandHidingTest {};

INSTANTIATE_TEST_SUITE_P(Compositors, WaylandMarksTest,
                         testing::ValuesIn(harness::installedOf({Compositor::Sway,
                                                                 Compositor::Kwin})),
                         testing::PrintToStringParamName());

TEST_P(WaylandMarksTest, ShowsWhatAProcessHidThatWasKilled) {
  ForeignWindow& red = desk.openWindow("red", kRed);
  ForeignWindow& blue = desk.openWindow("blue", kBlue);
  desk.toggleMode();
  ASSERT_TRUE(desk.until([&] { return !isSeen(kBlue) && !isSeen(kRed); }));
  program->kill();
  start();
  desk.toggleMode();
  desk.toggleMode();
  EXPECT_TRUE(becomesSeen(blue));
  close(blue);
  EXPECT_TRUE(becomesSeen(red));
}

TEST_P(WaylandHidingTest, LeavesItsOwnWindowsWhereTheyAreWithTheKeyboard) {
  ForeignWindow& red = desk.openWindow("not in the middle", kRed);
  desk.perform("preferences");
  ASSERT_TRUE(hasTheKeyboard("Preferences"));
  desk.toggleMode();
  ASSERT_TRUE(desk.until([&] { return !isSeen(kRed); }));
  EXPECT_TRUE(hasTheKeyboard("Preferences"));
  desk.toggleMode();
  // On labwc they may lie over it.
  if (GetParam() != Compositor::Labwc) {
    ASSERT_TRUE(becomesSeen(red));
  }
  EXPECT_TRUE(hasTheKeyboard("Preferences"));
}

}  // namespace
