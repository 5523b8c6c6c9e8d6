#include <gmock/gmock.h>

#include <algorithm>
#include <map>

#include "desktop/wayland/ModeDesk.h"

using harness::Compositor;
using harness::ForeignWindow;

namespace {

constexpr const char* kName = "org.calmdeck.Calmdeck";
constexpr std::uint32_t kRed = 0xd02010;
constexpr std::uint32_t kGreen = 0x10c020;
constexpr std::uint32_t kBlue = 0x1020e0;
constexpr std::uint32_t kWhite = 0xf0f8ff;
constexpr std::uint32_t kYellow = 0xe0d000;

/// Every foreign window in the middle, over the one before.
std::string allInTheMiddle(Compositor compositor) {
  switch (compositor) {
    case Compositor::Sway:
      return "for_window [app_id=\"^(red|green|blue|white|yellow)$\"] floating enable\n";
    case Compositor::Labwc:
      return "<placement><policy>center</policy></placement>";
    case Compositor::Kwin:
      break;
  }
  return "Placement=Centered\n";
}

/// Foreign windows, and the program, whose mode hides them and does nothing else.
class WaylandHidingTest : public testing::TestWithParam<Compositor>, public wayland_test::ModeDesk {
 protected:
  WaylandHidingTest()
      : ModeDesk({.compositor = GetParam(), .configuration = allInTheMiddle(GetParam())}) {
    start();
  }

  void start() {
    launch("HideActiveApps");
    EXPECT_TRUE(hasTheKeyboard("Calmdeck")) << program->errorOutput();
    desk.input().key("Escape");
    EXPECT_TRUE(desk.until([&] { return !isActive("Calmdeck"); }));
  }
  /// As scripts do it, so that the panel does not come up.
  void turn() { ask("toggle-presentation-mode"); }
  void ask(const std::string& action) {
    EXPECT_TRUE(desk.run({"gapplication", "action", kName, action}).succeeded());
  }

  /// Of the program's own windows.
  [[nodiscard]] bool isActive(const std::string& title) const {
    const harness::AccessibilityClient reader(desk);
    return std::ranges::any_of(reader.elements(), [&](const harness::AccessibleElement& element) {
      return element.role == "frame" && element.name == title && element.is("active");
    });
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
  [[nodiscard]] testing::AssertionResult becomesSeen(const ForeignWindow& window) {
    if (desk.until([&] { return isSeen(window.colour); })) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "it is not seen; " << program->errorOutput();
  }
  /// Whether what is typed goes there; typed until it does, since the keyboard moves on its own.
  [[nodiscard]] testing::AssertionResult getsTheKeyboard(ForeignWindow& window) {
    const auto arrives = [&] {
      desk.input().key("k");
      return window.process->waitForLine("^key k$", std::chrono::milliseconds(300)).has_value();
    };
    if (desk.until(arrives)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "it gets no keys";
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

  turn();
  ASSERT_TRUE(desk.until([&] { return seen() == kNothing; }));
  ForeignWindow& yellow = desk.openWindow("yellow", kYellow);
  ASSERT_TRUE(getsTheKeyboard(yellow));

  turn();
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
    turn();
    ASSERT_TRUE(desk.until([&] { return !isSeen(kBlue) && !isSeen(kRed); }));
    turn();
    ASSERT_TRUE(becomesSeen(blue));
    EXPECT_TRUE(getsTheKeyboard(blue));
  }
}

TEST_P(WaylandHidingTest, StaysAndEndsAlsoWhenTheCompositorReadsItsConfigurationAnew) {
  desk.openWindow("red", kRed);
  ForeignWindow& blue = desk.openWindow("blue", kBlue);
  turn();
  ASSERT_TRUE(desk.until([&] { return !isSeen(kBlue) && !isSeen(kRed); }));
  desk.reload();
  const harness::Rect all{0, 0, harness::WaylandDesk::kOutputWidth,
                          harness::WaylandDesk::kOutputHeight};
  [[maybe_unused]] const harness::Image settled =
      desk.screen().settled(all, std::chrono::milliseconds(500), harness::kPatience);
  EXPECT_EQ(seen(), kNothing);
  turn();
  EXPECT_TRUE(becomesSeen(blue));
  close(blue);
  EXPECT_TRUE(desk.until([&] { return isSeen(kRed); }));
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
  turn();
  ASSERT_TRUE(desk.until([&] { return !isSeen(kBlue) && !isSeen(kRed); }));
  program->kill();
  start();
  turn();
  turn();
  EXPECT_TRUE(becomesSeen(blue));
  close(blue);
  EXPECT_TRUE(becomesSeen(red));
}

TEST_P(WaylandHidingTest, LeavesItsOwnWindowsWhereTheyAreWithTheKeyboard) {
  ForeignWindow& red = desk.openWindow("not in the middle", kRed);
  ask("preferences");
  ASSERT_TRUE(hasTheKeyboard("Preferences"));
  turn();
  ASSERT_TRUE(desk.until([&] { return !isSeen(kRed); }));
  EXPECT_TRUE(hasTheKeyboard("Preferences"));
  turn();
  // On labwc they may lie over it.
  if (GetParam() != Compositor::Labwc) {
    ASSERT_TRUE(becomesSeen(red));
  }
  EXPECT_TRUE(hasTheKeyboard("Preferences"));
}

}  // namespace
