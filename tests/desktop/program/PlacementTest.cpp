#include <ostream>
#include <tuple>

#include "desktop/program/ProgramDesk.h"

using harness::Edge;
using harness::Panel;
using harness::Rect;
using harness::WindowManager;

namespace {

struct Place {
  const char* name;
  Panel panel;
  Edge edge;
  int monitor;
};

// What a test runner lists the case under.
void PrintTo(const Place& row, std::ostream* stream) {
  *stream << row.name;
}

class PlacementTest : public testing::TestWithParam<Place>, public ProgramDesk {
 protected:
  PlacementTest()
      : ProgramDesk({.windowManager = WindowManager::Openbox,
                     .panel = GetParam().panel,
                     .panelPlace = {.edge = GetParam().edge, .monitor = GetParam().monitor}}) {}

  /// Inside the monitor, beside the bar and not far from it, and in line with the icon.
  testing::AssertionResult isAtTheIcon() {
    constexpr int kWidestGap = 16;
    const Rect popover = popoverArea();
    const Rect bar = desk.panelAreas().at(0);
    const auto icon = desk.trayIcon();
    if (!icon) return testing::AssertionFailure() << "no icon";
    const Rect monitor = desk.server().monitors().at(static_cast<std::size_t>(GetParam().monitor));
    const Rect around{bar.x - kWidestGap, bar.y - kWidestGap, bar.width + 2 * kWidestGap,
                      bar.height + 2 * kWidestGap};
    const bool lies = bar.width > bar.height;
    const bool inLine = lies ? popover.contains(icon->centreX(), popover.y)
                             : popover.contains(popover.x, icon->centreY());
    if (monitor.contains(popover) && !bar.intersects(popover) && around.intersects(popover) &&
        inLine)
      return testing::AssertionSuccess();
    const auto text = [](const Rect& area) {
      return testing::PrintToString(std::tuple(area.x, area.y, area.width, area.height));
    };
    return testing::AssertionFailure()
           << "popover " << text(popover) << " bar " << text(bar) << " icon " << text(*icon);
  }
};

INSTANTIATE_TEST_SUITE_P(
    EachEdge, PlacementTest,
    testing::Values(Place{"XfcePanelTop", Panel::XfcePanel, Edge::Top, 0},
                    Place{"XfcePanelLeft", Panel::XfcePanel, Edge::Left, 0},
                    Place{"XfcePanelRight", Panel::XfcePanel, Edge::Right, 0},
                    Place{"XfcePanelBottomOfTheSecond", Panel::XfcePanel, Edge::Bottom, 1},
                    Place{"XfcePanelRightOfTheSecond", Panel::XfcePanel, Edge::Right, 1},
                    Place{"Tint2Top", Panel::Tint2, Edge::Top, 0},
                    Place{"Tint2Left", Panel::Tint2, Edge::Left, 0},
                    Place{"Tint2BottomOfTheSecond", Panel::Tint2, Edge::Bottom, 1},
                    Place{"LxqtPanelBottomOfTheSecond", Panel::LxqtPanel, Edge::Bottom, 1}),
    [](const auto& row) { return row.param.name; });

TEST_P(PlacementTest, ThePopoverStandsAtTheIconAndIsToggledByIt) {
  ASSERT_TRUE(start());
  EXPECT_TRUE(isAtTheIcon()) << "at launch";
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(clickIcon());
    ASSERT_TRUE(closes());
    ASSERT_TRUE(clickIcon());
    ASSERT_TRUE(opens());
    EXPECT_TRUE(isAtTheIcon()) << "after a click";
  }
}

}  // namespace
