// Hiding and showing other programs' windows, beside each window manager.

#include <gmock/gmock.h>

#include <QLoggingCategory>
#include <algorithm>
#include <chrono>

#include "desktop/x11/HidingDesk.h"

using harness::WindowManager;
using testing::ElementsAre;

namespace {

class HidingTest : public testing::TestWithParam<WindowManager> {
 protected:
  HidingDesk desk{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(EachWindowManager, HidingTest,
                         testing::Values(WindowManager::Openbox, WindowManager::Xfwm4,
                                         WindowManager::Marco, WindowManager::Icewm,
                                         WindowManager::Jwm, WindowManager::Mutter,
                                         WindowManager::Kwin),
                         testing::PrintToStringParamName());

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
  const Windows hidden{letter, elsewhere, drawing, memo};
  const Windows all{letter, elsewhere, drawing, clock, dialog, memo};
  const auto order = desk.stacking(all);
  ASSERT_EQ(order.size(), all.size());

  QLoggingCategory::setFilterRules("calmdeck.x11.debug=true");
  desk.startProgram();
  desk.hideAsTheMode();
  ASSERT_TRUE(desk.allMinimised(hidden));
  EXPECT_TRUE(desk.until([&] { return !desk.isSeen(dialog); }));
  EXPECT_TRUE(desk.isSeen(clock));
  EXPECT_FALSE(desk.isMinimised(clock) || desk.isMarked(clock));

  desk.activate(clock);
  desk.show();
  ASSERT_TRUE(desk.allShown(hidden));
  EXPECT_TRUE(desk.until([&] { return desk.isSeen(dialog); }));
  EXPECT_TRUE(desk.until([&] { return desk.stacking(all) == order; }));
  EXPECT_THAT(desk.stacking(all), testing::ElementsAreArray(order));
  EXPECT_TRUE(desk.until([&] { return desk.isActive(clock); }));
  EXPECT_TRUE(desk.until([&] { return desk.workspace(elsewhere) == 1; }));
  const harness::XConnection& x = desk.x();
  EXPECT_EQ(x.number(x.root(), "_NET_CURRENT_DESKTOP"), 0U);
  EXPECT_TRUE(x.numbers(x.root(), "_CALMDECK_ORDER").empty());
  EXPECT_THAT(desk.program().log(), testing::Not(testing::HasSubstr("do not come back")))
      << "the manager heeds the way in which it is asked";
  QLoggingCategory::setFilterRules({});
}

TEST_P(HidingTest, TheWindowThatWasActiveIsSoAgainUnlessTheUserWorksInAnother) {
  const auto icons = desk.open({.name = "icons", .type = "DESKTOP", .area = {0, 0, 1280, 720}});
  const auto letter = desk.openProgram("letter", {100, 100, 300, 200});
  const auto memo = desk.openProgram("memo", {150, 150, 300, 200});
  const auto drawing = desk.openProgram("drawing", {200, 200, 300, 200});
  const Windows hidden{letter, memo, drawing};
  desk.startProgram();
  // Whatever becomes active as the others go: nothing, the icons, or what the user works in then.
  for (const std::string meanwhile : {"nothing", "icons", "talk"}) {
    desk.activate(memo);
    const auto order = desk.stacking(hidden);
    desk.hideAsTheMode();
    ASSERT_TRUE(desk.allMinimised(hidden));
    xcb_window_t wanted = memo;
    if (meanwhile == "icons") desk.activate(icons);
    if (meanwhile == "talk") desk.activate(wanted = desk.open({.name = meanwhile}));
    desk.startProgram();
    desk.show();
    ASSERT_TRUE(desk.allShown(hidden));
    EXPECT_TRUE(desk.until([&] { return desk.hasKeyboard(wanted); })) << meanwhile;
    EXPECT_TRUE(desk.until([&] { return desk.stacking(hidden) == order; })) << meanwhile;
    EXPECT_TRUE(desk.until([&] { return desk.isActive(wanted); })) << meanwhile;
  }
}

TEST_P(HidingTest, OnlyWhatHidingTookAwayComesBack) {
  const auto minimisedBefore = desk.open({.name = "minimised before", .className = "A"});
  const auto forward = desk.open({.name = "brought forward", .className = "B"});
  const auto putAway = desk.open({.name = "brought forward and put away", .className = "C"});
  const auto quiet = desk.open({.name = "quiet", .className = "D"});
  desk.minimise(minimisedBefore);

  desk.startProgram();
  desk.hideAsTheMode();
  ASSERT_TRUE(desk.allMinimised({forward, putAway, quiet}));
  EXPECT_FALSE(desk.isMarked(minimisedBefore));
  ASSERT_TRUE(desk.until([&] { return !desk.isActive(putAway); }));
  desk.activate(putAway);
  ASSERT_TRUE(desk.until([&] { return desk.x().number(putAway, "_CALMDECK_HIDDEN") == 0U; }));
  desk.activate(forward);
  ASSERT_TRUE(desk.until([&] { return !desk.isMinimised(forward); }));
  desk.minimise(putAway);

  desk.show();
  ASSERT_TRUE(desk.allShown({quiet, forward}));
  EXPECT_TRUE(desk.isMinimised(minimisedBefore));
  EXPECT_TRUE(desk.isMinimised(putAway));
  const Windows forwardAbove{quiet, forward};
  EXPECT_TRUE(desk.until([&] { return desk.stacking(forwardAbove) == forwardAbove; }));
}

TEST_P(HidingTest, TheLastWishPrevails) {
  const auto many = desk.openMany(20);
  desk.startProgram();
  desk.hideAsTheMode();
  desk.show();
  desk.hide();
  desk.program().turn();
  desk.show();
  desk.program().turn();
  desk.hideAsTheMode();
  ASSERT_TRUE(desk.allMinimised(many));
  desk.show();
  desk.hideAsTheMode();
  desk.show();
  ASSERT_TRUE(desk.allShown(many));
  // While hiding is under way.
  desk.hide();
  desk.program().turn();
  desk.show();
  ASSERT_TRUE(desk.allShown(many));
}

TEST_P(HidingTest, ManyWindowsCostFewRequestsAndNoneWhileTheyAreAskedFor) {
  constexpr unsigned kWindows = 100;
  const auto many = desk.openMany(kWindows);
  const auto order = desk.stacking(many);
  desk.startProgram();
  const auto cost = [&](void (HidingDesk::*ask)(), auto allAre) {
    EXPECT_EQ(desk.list().size(), 11U);
    static_cast<void>(desk.requests());
    (desk.*ask)();
    // All is known from the list of this turn.
    EXPECT_EQ(desk.requests(), 1U);
    EXPECT_TRUE((desk.*allAre)(many));
    static_cast<void>(desk.list());
    // Each window is read a few times, watched, asked and marked. A list that is asked for just
    // before the last of them is seen to have gone is read twice more.
    EXPECT_LT(desk.requests(), 90 * kWindows);
  };
  cost(&HidingDesk::hide, &HidingDesk::allMinimised);
  cost(&HidingDesk::show, &HidingDesk::allShown);
  EXPECT_TRUE(desk.until([&] { return desk.stacking(many) == order; }));
}

TEST_P(HidingTest, AManagerThatDiesIsNotWaitedForAndTheNextOneIsAsked) {
  const Windows three = desk.openThree();
  desk.startProgram();
  ASSERT_EQ(desk.list().size(), 1 + three.size());
  // It dies before it has done anything about what was asked, and another one comes.
  const auto loseManager = [&] {
    desk.program().turn();
    desk.windowManager().kill();
    desk.startWindowManager(GetParam());
    ASSERT_TRUE(desk.until([&] { return desk.stacking(three).size() == three.size(); }));
  };
  desk.windowManager().freeze();
  desk.hideAsTheMode();
  ASSERT_NO_FATAL_FAILURE(loseManager());
  desk.hideAsTheMode();
  ASSERT_TRUE(desk.allMinimised(three));

  desk.windowManager().freeze();
  desk.show();
  ASSERT_NO_FATAL_FAILURE(loseManager());
  desk.hideAsTheMode();
  ASSERT_TRUE(desk.allMinimised(three));
  desk.show();
  ASSERT_TRUE(desk.allShown(three));
  // One that was waited for would have been complained of.
  EXPECT_EQ(desk.program().log(), "");
}

TEST(MutterTest, WindowsOfAMonitorWithoutWorkspacesDoNotBecomeThoseOfAll) {
  HidingDesk desk(WindowManager::Mutter);
  // As it is in GNOME's own session.
  desk.mustRun({"gsettings", "set", "org.gnome.mutter", "workspaces-only-on-primary", "true"});
  const auto beside = desk.open({.name = "beside", .area = {1400, 100, 200, 150}});
  ASSERT_TRUE(
      harness::until([&] { return desk.workspace(beside) == UINT32_MAX; }, harness::kPatience));
  desk.startProgram();
  desk.hideAsTheMode();
  ASSERT_TRUE(desk.allMinimised({beside}));
  desk.show();
  ASSERT_TRUE(desk.allShown({beside}));
  // It does this after all that it was asked for before.
  desk.minimise(beside);
  EXPECT_FALSE(desk.windows().info(beside)->has("STICKY"));
}

TEST(FluxboxTest, ItsTurnThatNeverComesHoldsNothingUp) {
  HidingDesk desk(WindowManager::Fluxbox);
  const Windows windows = desk.openThree();
  desk.startProgram();
  // One that is busy gets ten seconds.
  constexpr std::chrono::seconds kPatience{8};
  for (int round = 0; round < 2; ++round) {
    desk.hideAsTheMode();
    ASSERT_TRUE(desk.allMinimised(windows));
    desk.show();
    const auto isBack = [&](xcb_window_t window) { return !desk.isMarked(window); };
    EXPECT_TRUE(harness::until([&] { return std::ranges::all_of(windows, isBack); }, kPatience,
                               [&] { desk.program().turn(); }));
  }
  EXPECT_EQ(desk.program().log(), "");
}

TEST(ShowOrderTest, WhatGoesBackStandsWhereItWasAndNothingElseMoves) {
  using linux_desktop::orderPutBack;
  const linux_desktop::WindowOrder remembered{1, 2, 3, 4, 5};
  EXPECT_THAT(orderPutBack({1, 3, 5, 4, 2}, {2, 4}, remembered), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_THAT(orderPutBack({5, 3, 1}, {1, 3, 5}, remembered), ElementsAre(1, 3, 5));
  EXPECT_THAT(orderPutBack({1, 9, 3, 2}, {2, 3}, {1, 2, 3}), ElementsAre(1, 2, 3, 9));
  EXPECT_THAT(orderPutBack({1, 8, 2}, {8, 2}, {}), ElementsAre(1, 8, 2));
}

}  // namespace
