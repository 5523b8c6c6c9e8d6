#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/applications/ApplicationsDesk.h"

using harness::WindowManager;

namespace {

class HidingTest : public testing::TestWithParam<WindowManager> {
 protected:
  ApplicationsDesk desk{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(EachWindowManager, HidingTest, testing::ValuesIn(kWindowManagers),
                         nameOfWindowManager);

TEST_P(HidingTest, ShowingGivesBackOrderWorkspacesAndTheActiveWindow) {
  const auto letter = desk.openProgram("letter", {100, 100, 300, 200});
  const auto elsewhere = desk.openProgram("elsewhere", {150, 150, 300, 200});
  desk.moveToWorkspace(elsewhere, 1);
  const auto drawing = desk.open({.name = "drawing", .className = "Draw"});
  const auto clock = desk.open({.name = "clock", .state = "SKIP_TASKBAR"});
  const auto dialog =
      desk.open({.name = "dialog", .className = "Draw", .type = "DIALOG", .transientFor = drawing});
  const auto memo = desk.openProgram("memo", {200, 200, 300, 200});
  desk.activate(letter);
  desk.activate(clock);
  const std::vector<xcb_window_t> hidden{letter, elsewhere, drawing, memo};
  const std::vector<xcb_window_t> all{letter, elsewhere, drawing, clock, dialog, memo};
  const auto order = desk.stacking(all);
  ASSERT_EQ(order.size(), all.size());

  desk.startProbe();
  desk.tell("hide");
  ASSERT_TRUE(desk.allMinimised(hidden));
  EXPECT_TRUE(desk.desk().until([&] { return !desk.desk().windows().info(dialog)->viewable; }));
  EXPECT_TRUE(desk.desk().windows().info(clock)->viewable);
  EXPECT_FALSE(desk.isMinimised(clock) || desk.isMarked(clock));

  desk.activate(clock);
  desk.tell("show");
  ASSERT_TRUE(desk.allShown(hidden));
  EXPECT_TRUE(desk.desk().until([&] { return desk.desk().windows().info(dialog)->viewable; }));
  EXPECT_TRUE(desk.desk().until([&] { return desk.stacking(all) == order; }));
  EXPECT_THAT(desk.stacking(all), testing::ElementsAreArray(order));
  EXPECT_TRUE(desk.desk().until([&] { return desk.desk().windows().active() == clock; }));
  EXPECT_TRUE(desk.desk().until([&] { return desk.workspace(elsewhere) == 1; }));
  EXPECT_EQ(desk.currentWorkspace(), 0U);
  EXPECT_TRUE(desk.desk().x().numbers(desk.desk().x().root(), "_CALMDECK_ORDER").empty());
}

TEST_P(HidingTest, TheWindowThatWasActiveIsSoAgainUnlessTheUserWorksInAnother) {
  const auto icons = desk.open({.name = "icons", .type = "DESKTOP", .area = {0, 0, 1280, 720}});
  const auto letter = desk.openProgram("letter", {100, 100, 300, 200});
  const auto memo = desk.openProgram("memo", {150, 150, 300, 200});
  const auto drawing = desk.openProgram("drawing", {200, 200, 300, 200});
  const std::vector<xcb_window_t> hidden{letter, memo, drawing};
  desk.startProbe();
  // Whatever becomes active as the others go: nothing, the icons, or what the user works in then.
  for (const char* meanwhile : {"nothing", "icons", "talk"}) {
    desk.activate(memo);
    const auto order = desk.stacking(hidden);
    desk.tell("hide");
    ASSERT_TRUE(desk.allMinimised(hidden));
    xcb_window_t wanted = memo;
    if (meanwhile == std::string("icons")) desk.activate(icons);
    if (meanwhile == std::string("talk")) desk.activate(wanted = desk.open({.name = meanwhile}));
    desk.probe().kill();
    desk.startProbe();
    desk.tell("show");
    ASSERT_TRUE(desk.allShown(hidden));
    EXPECT_TRUE(desk.desk().until([&] { return desk.hasKeyboard(wanted); })) << meanwhile;
    EXPECT_TRUE(desk.desk().until([&] { return desk.stacking(hidden) == order; })) << meanwhile;
    EXPECT_TRUE(desk.desk().until([&] { return desk.desk().windows().active() == wanted; }));
  }
}

TEST_P(HidingTest, OnlyWhatHidingTookAwayComesBack) {
  const auto minimisedBefore = desk.open({.name = "minimised before", .className = "A"});
  const auto forward = desk.open({.name = "brought forward", .className = "B"});
  const auto putAway = desk.open({.name = "brought forward and put away", .className = "C"});
  const auto quiet = desk.open({.name = "quiet", .className = "D"});
  desk.minimise(minimisedBefore);

  desk.startProbe();
  desk.tell("hide");
  ASSERT_TRUE(desk.allMinimised({forward, putAway, quiet}));
  EXPECT_FALSE(desk.isMarked(minimisedBefore));
  ASSERT_TRUE(desk.desk().until([&] { return desk.desk().windows().active() != putAway; }));
  desk.activate(putAway);
  ASSERT_TRUE(
      desk.desk().until([&] { return desk.desk().x().number(putAway, "_CALMDECK_HIDDEN") == 0U; }));
  desk.activate(forward);
  ASSERT_TRUE(desk.desk().until([&] { return !desk.isMinimised(forward); }));
  desk.minimise(putAway);

  desk.tell("show");
  ASSERT_TRUE(desk.allShown({quiet, forward}));
  EXPECT_TRUE(desk.isMinimised(minimisedBefore));
  EXPECT_TRUE(desk.isMinimised(putAway));
  const std::vector<xcb_window_t> forwardAbove{quiet, forward};
  EXPECT_TRUE(desk.desk().until([&] { return desk.stacking(forwardAbove) == forwardAbove; }));
}

TEST_P(HidingTest, TheLastWishPrevails) {
  const auto windows = desk.openMany(20);
  desk.startProbe();
  for (const char* commands : {"hide show", "hide", "show", "hide"}) desk.tell(commands);
  ASSERT_TRUE(desk.allMinimised(windows));
  for (const char* commands : {"show", "hide", "show hide", "show"}) desk.tell(commands);
  ASSERT_TRUE(desk.allShown(windows));
}

TEST_P(HidingTest, ManyWindowsCostAFewRoundTrips) {
  constexpr int kWindows = 100;
  const auto windows = desk.openMany(kWindows);
  ASSERT_EQ(desk.stacking(windows).size(), windows.size());
  const auto order = desk.stacking(windows);
  desk.startProbe();
  ASSERT_EQ(desk.list().size(), 11U);
  [[maybe_unused]] const auto before = desk.cost();
  desk.tell("hide");
  ASSERT_TRUE(desk.allMinimised(windows));
  desk.tell("list");
  const auto hiding = desk.cost();
  desk.tell("show");
  ASSERT_TRUE(desk.allShown(windows));
  desk.tell("list");
  const auto showing = desk.cost();
  EXPECT_TRUE(desk.desk().until([&] { return desk.stacking(windows) == order; }));

  // Each window is read a few times, watched, asked and marked. A list that is asked for just before
  // the last of them is seen to have gone is read twice more.
  constexpr int kMost = 90 * kWindows;
  EXPECT_LT(hiding.requests, kMost);
  EXPECT_LT(showing.requests, kMost);
  EXPECT_LT(hiding.roundTrips, 20);
  EXPECT_LT(showing.roundTrips, 20);
}

}  // namespace
