#include <ostream>
#include <tuple>

#include "desktop/program/ProgramDesk.h"

using harness::DeskOptions;
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

class PlacementTest : public testing::TestWithParam<Place> {
 protected:
  /// The free pixels between the popover and the bar at the bar's inner edge.
  static int distance(const Rect& popover, const Rect& bar, Edge edge) {
    switch (edge) {
      case Edge::Top:
        return popover.y - bar.bottom();
      case Edge::Bottom:
        return bar.y - popover.bottom();
      case Edge::Left:
        return popover.x - bar.right();
      case Edge::Right:
        return bar.x - popover.right();
    }
    return -1;
  }

  testing::AssertionResult isAtTheIcon() {
    constexpr int kWidestGap = 16;
    const Rect popover = program.popoverArea();
    const Rect bar = program.desk().panelAreas().at(0);
    const auto icon = program.desk().trayIcon();
    if (!icon) return testing::AssertionFailure() << "no icon";
    const Rect monitor =
        program.desk().server().monitors().at(static_cast<std::size_t>(GetParam().monitor));
    const int gap = distance(popover, bar, GetParam().edge);
    const bool lies = bar.width > bar.height;
    const bool beside = lies ? popover.x <= icon->centreX() && icon->centreX() < popover.right()
                             : popover.y <= icon->centreY() && icon->centreY() < popover.bottom();
    if (monitor.contains(popover) && gap >= 0 && gap <= kWidestGap && beside)
      return testing::AssertionSuccess();
    const auto text = [](const Rect& area) {
      return testing::PrintToString(std::tuple(area.x, area.y, area.width, area.height));
    };
    return testing::AssertionFailure()
           << "popover " << text(popover) << " bar " << text(bar) << " icon " << text(*icon);
  }

  ProgramDesk program{
      DeskOptions{.windowManager = WindowManager::Openbox,
                  .panel = GetParam().panel,
                  .panelPlace = {.edge = GetParam().edge, .monitor = GetParam().monitor}}};
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
  ASSERT_TRUE(program.start());
  EXPECT_TRUE(isAtTheIcon()) << "at launch";
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(program.clickIcon());
    ASSERT_TRUE(program.closes());
    ASSERT_TRUE(program.clickIcon());
    ASSERT_TRUE(program.opens());
    EXPECT_TRUE(isAtTheIcon()) << "after a click";
  }
}

}  // namespace
