#include "desktop/harness/WaylandDesk.h"

#include <gtest/gtest.h>

namespace harness {
namespace {

class WaylandDeskTest : public testing::TestWithParam<Compositor> {};

INSTANTIATE_TEST_SUITE_P(Compositors, WaylandDeskTest, testing::ValuesIn(installedCompositors()),
                         testing::PrintToStringParamName());

TEST_P(WaylandDeskTest, WindowsAreSeenClickedAndTypedInto) {
  WaylandDesk desk({.compositor = GetParam()});
  ForeignWindow& red = desk.openWindow("red", 0xc02030);
  ForeignWindow& green = desk.openWindow("green", 0x20c030);
  for (ForeignWindow* window : {&red, &green}) {
    desk.clickOn(*window);
    EXPECT_TRUE(window->process->waitForLine("^press$"));
    desk.input().key("a");
    desk.input().key("shift+b");
    EXPECT_TRUE(window->process->waitForLine("^key a$"));
    EXPECT_TRUE(window->process->waitForLine("^key B$"));
  }
}

TEST_P(WaylandDeskTest, MonitorsGoAndComeAndScale) {
  WaylandDesk desk({.compositor = GetParam()});
  const std::vector<WaylandOutput> both = desk.outputs();
  ASSERT_EQ(both.size(), 2U);
  EXPECT_EQ(both.front().area, (Rect{0, 0, 1280, 720}));
  EXPECT_EQ(both.back().area, (Rect{1280, 0, 1280, 720}));
  if (desk.turnOff(both.back().name)) desk.turnOn(both.back().name);
  desk.scale(both.back().name, 2);
  for (const WaylandOutput& output : desk.outputs()) {
    const bool isScaled = output.name == both.back().name;
    EXPECT_EQ(output.area.width, isScaled ? 640 : 1280) << output.name;
    EXPECT_EQ(output.area.height, isScaled ? 360 : 720) << output.name;
  }
}

}  // namespace
}  // namespace harness
