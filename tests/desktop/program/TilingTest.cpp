// The real program on window managers that lay windows side by side.

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "desktop/program/ProgramDesk.h"

using harness::Rect;
using harness::WindowManager;

namespace {

class TilingTest : public testing::TestWithParam<WindowManager>, public ProgramDesk {
 protected:
  TilingTest() : ProgramDesk({.windowManager = GetParam(), .panel = harness::Panel::Tint2}) {
    desk.writeSettings({"HideActiveApps"});
    for (const char* name : {"letter", "memo", "drawing"})
      tiles.push_back(desk.openWindow(name, {100, 100, 300, 200}).id);
    EXPECT_TRUE(start());
    popover = popoverArea();
    EXPECT_TRUE(close());
    EXPECT_TRUE(desk.activate(memo()));
    before = places();
  }

  [[nodiscard]] xcb_window_t memo() const { return tiles[1]; }
  /// Of those that are on the screen.
  [[nodiscard]] std::vector<Rect> places() const {
    std::vector<Rect> places;
    for (const xcb_window_t tile : tiles) {
      const auto info = desk.windows().info(tile);
      if (info && info->viewable) places.push_back(info->area);
    }
    return places;
  }
  [[nodiscard]] bool allAreGone() const {
    return desk.until([&] { return places().empty(); });
  }
  [[nodiscard]] bool allAreBack() const {
    return desk.until([&] { return places() == before && desk.windows().active() == memo(); });
  }

  Rect popover;
  std::vector<xcb_window_t> tiles;
  std::vector<Rect> before;
};

INSTANTIATE_TEST_SUITE_P(On, TilingTest, testing::Values(WindowManager::Bspwm, WindowManager::I3),
                         testing::PrintToStringParamName());

TEST_P(TilingTest, TilesGoAndComeBackToTheirPlacesWithTheActiveOne) {
  for (int round = 0; round < 2; ++round) {
    desk.toggleMode();
    ASSERT_TRUE(allAreGone());
    desk.toggleMode();
    ASSERT_TRUE(allAreBack());
  }
  for (const char* room : {"x11", "sway"}) EXPECT_THAT(complaints(room), testing::IsEmpty());
}

TEST_P(TilingTest, ThePopoverStandsAtThePanelAllTheSame) {
  constexpr int kWidestGap = 16;
  const Rect bar = desk.panelAreas().at(0);
  const Rect around{bar.x, bar.y - kWidestGap, bar.width, bar.height + kWidestGap};
  EXPECT_FALSE(bar.intersects(popover)) << popover.x << "," << popover.y;
  EXPECT_TRUE(around.intersects(popover)) << popover.x << "," << popover.y;
}

/// I3 alone ends all its connections when it is told to start anew, and keeps the windows.
class I3Test : public TilingTest {};

INSTANTIATE_TEST_SUITE_P(On, I3Test, testing::Values(WindowManager::I3),
                         testing::PrintToStringParamName());

TEST_P(I3Test, OneThatStartedAnewMeanwhileIsAskedAgain) {
  desk.toggleMode();
  ASSERT_TRUE(allAreGone());
  const std::string i3 = "/proc/" + std::to_string(desk.windowManager().pid()) + "/cmdline";
  const std::string command = harness::textOf(i3);
  desk.mustRun({"i3-msg", "restart"});
  ASSERT_TRUE(desk.until([&] { return harness::textOf(i3) != command; }));
  // It listens as soon as its own client can ask it something.
  ASSERT_TRUE(desk.until([&] { return desk.run({"i3-msg", "-t", "get_version"}).succeeded(); }));
  desk.toggleMode();
  EXPECT_TRUE(allAreBack());
}

}  // namespace
