#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <map>

#include "desktop/harness/WaylandDesk.h"

using harness::Compositor;
using harness::ForeignWindow;
using harness::WaylandDesk;

namespace {

constexpr std::uint32_t kRed = 0xd02010;
constexpr std::uint32_t kGreen = 0x10c020;
constexpr std::uint32_t kBlue = 0x1020e0;
constexpr std::uint32_t kWhite = 0xf0f8ff;
constexpr std::uint32_t kYellow = 0xe0d000;

/// Every window in the middle, over the one before.
std::string allInTheMiddle(Compositor compositor) {
  switch (compositor) {
    case Compositor::Sway:
      return "for_window [title=\".*\"] floating enable\n";
    case Compositor::Labwc:
      return "<placement><policy>center</policy></placement>";
    case Compositor::Kwin:
      break;
  }
  return "Placement=Centered\n";
}

/// Foreign windows, and the probe, which hides and shows them.
class WaylandHidingTest : public testing::TestWithParam<Compositor> {
 protected:
  WaylandHidingTest() : fifo_(desk.home().home() / "commands") {
    EXPECT_EQ(::mkfifo(fifo_.c_str(), 0600), 0);
    startProbe();
  }

  void startProbe() {
    probe_ = desk.start({HIDING_PROBE, fifo_});
    EXPECT_TRUE(probe_->waitForLine("^up$")) << probe_->errorOutput();
  }
  void killProbe() { probe_->kill(); }

  void tell(const std::string& order) {
    std::ofstream(fifo_) << order << std::endl;
    EXPECT_TRUE(probe_->waitForLine("^done$")) << probe_->errorOutput();
  }
  bool isHiding() {
    std::ofstream(fifo_) << "hidden" << std::endl;
    return probe_->waitForLine("^(hidden|shown)$").value_or("") == "hidden";
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
    return testing::AssertionFailure() << "it is not seen; " << probe_->errorOutput();
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
  [[nodiscard]] bool oursGetsTheKeyboard() {
    return desk.until([&] {
      desk.input().key("k");
      return probe_->waitForLine("^key$", std::chrono::milliseconds(300)).has_value();
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

  WaylandDesk desk{{.compositor = GetParam(), .configuration = allInTheMiddle(GetParam())}};

 private:
  std::string fifo_;
  std::unique_ptr<harness::Process> probe_;
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

  tell("hide");
  ASSERT_TRUE(desk.until([&] { return seen() == kNothing; }));
  EXPECT_TRUE(isHiding());
  ForeignWindow& yellow = desk.openWindow("yellow", kYellow);
  ASSERT_TRUE(getsTheKeyboard(yellow));

  tell("show");
  ASSERT_TRUE(desk.until([&] { return !isHiding(); }));
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
    tell("hide");
    ASSERT_TRUE(desk.until([&] { return !isSeen(kBlue) && !isSeen(kRed); }));
    tell("show");
    ASSERT_TRUE(becomesSeen(blue));
    EXPECT_TRUE(getsTheKeyboard(blue));
  }
}

TEST_P(WaylandHidingTest, ShowsWhatAProcessHidThatWasKilled) {
  if (GetParam() == Compositor::Labwc) GTEST_SKIP() << "labwc keeps no mark on a window";
  ForeignWindow& red = desk.openWindow("red", kRed);
  ForeignWindow& blue = desk.openWindow("blue", kBlue);
  tell("hide");
  ASSERT_TRUE(desk.until([&] { return !isSeen(kBlue) && !isSeen(kRed); }));
  killProbe();
  startProbe();
  ASSERT_TRUE(desk.until([&] { return isHiding(); }));
  tell("show");
  EXPECT_TRUE(becomesSeen(blue));
  close(blue);
  EXPECT_TRUE(becomesSeen(red));
}

TEST_P(WaylandHidingTest, LeavesItsOwnWindowsWhereTheyAreWithTheKeyboard) {
  ForeignWindow& red = desk.openWindow("red", kRed);
  tell("open");
  constexpr std::uint32_t kOurs = 0xff00ff;
  ASSERT_TRUE(desk.until([&] { return isSeen(kOurs); }));
  tell("hide");
  ASSERT_TRUE(desk.until([&] { return !isSeen(kRed); }));
  EXPECT_TRUE(desk.until([&] { return isSeen(kOurs); }));
  EXPECT_TRUE(oursGetsTheKeyboard());
  tell("show");
  ASSERT_TRUE(becomesSeen(red));
  EXPECT_TRUE(oursGetsTheKeyboard());
  close(red);
  EXPECT_TRUE(desk.until([&] { return isSeen(kOurs); }));
}

}  // namespace
