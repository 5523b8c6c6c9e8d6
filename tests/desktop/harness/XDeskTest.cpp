#include "desktop/harness/XDesk.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace harness {
namespace {

// A descendant that was given this desktop's folders, as ps tells it.
bool somebodyLivesIn(const std::string& runtimeFolder) {
  const RunResult list = runToEnd({{"ps", "axeww", "-o", "args"}});
  return list.output.find("XDG_RUNTIME_DIR=" + runtimeFolder) != std::string::npos;
}

TEST(XDesk, NothingIsLeftBehind) {
  std::filesystem::path runtime;
  {
    const XDesk desk({.windowManager = WindowManager::Xfwm4, .panel = Panel::XfcePanel});
    runtime = desk.home().runtime();
    // One that slips out of its process group, as daemons do.
    ASSERT_TRUE(desk.run({"setsid", "--fork", "sleep", "1000"}).succeeded());
    ASSERT_TRUE(somebodyLivesIn(runtime));
  }
  EXPECT_FALSE(somebodyLivesIn(runtime));
  EXPECT_FALSE(std::filesystem::exists(runtime.parent_path()));
}

TEST(XDesk, MonitorsComeAndGo) {
  const std::vector<Rect> two{{0, 0, 800, 600}, {800, 0, 640, 480}};
  XDesk desk({.monitors = two, .sessionBus = false});
  EXPECT_EQ(desk.server().monitors(), two);
  desk.server().setMonitors({{0, 0, 800, 600}});
  EXPECT_EQ(desk.server().monitors().size(), 1U);
  desk.server().setMonitors(two);
  EXPECT_EQ(desk.server().monitors(), two);
}

TEST(XDesk, ClicksAndKeysArriveAsAPersonsDo) {
  XDesk desk({.windowManager = WindowManager::Openbox, .sessionBus = false});
  const WindowInfo below = desk.openWindow("below", {100, 100, 300, 200});
  const WindowInfo beside = desk.openWindow("beside", {600, 100, 300, 200});
  for (const WindowInfo& window : {below, beside}) {
    desk.input().click(window.area.centreX(), window.area.centreY());
    EXPECT_TRUE(desk.until([&] { return desk.windows().active() == window.id; }));
  }
  desk.input().key("alt+F4");
  EXPECT_TRUE(desk.until([&] { return !desk.windows().info(beside.id); }));
  EXPECT_TRUE(desk.windows().info(below.id));
}

TEST(Screen, TheChangedAreaIsTheSmallestThatHoldsEveryDifference) {
  Image before{8, 6, std::vector<std::uint32_t>(48)};
  Image after = before;
  EXPECT_FALSE(changedArea(before, after));
  after.pixels[8 * 1 + 5] = 1;
  after.pixels[8 * 4 + 2] = 1;
  EXPECT_EQ(changedArea(before, after), (Rect{2, 1, 4, 4}));
}

}  // namespace
}  // namespace harness
