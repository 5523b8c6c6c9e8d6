// A window manager that dies or hangs in the middle of hiding and showing.

#include <gtest/gtest.h>

#include "desktop/applications/ApplicationsDesk.h"

using harness::WindowManager;

namespace {

class ManagerFaultsTest : public testing::TestWithParam<WindowManager> {
 protected:
  void SetUp() override {
    for (const char* name : {"A", "B", "C"}) {
      windows.push_back(desk.open({.name = name, .className = name}));
    }
    desk.activate(windows.back());
    desk.startProbe();
    ASSERT_EQ(desk.list().size(), 1 + windows.size());
  }
  /// The window manager dies before it has done anything about `command`, and another one comes.
  void loseManagerIn(const char* command) {
    desk.desk().windowManager().freezeGroup();
    desk.tell(command);
    desk.desk().windowManager().kill();
    desk.desk().startWindowManager(GetParam());
    const auto listed = [&] { return desk.stacking(windows).size() == windows.size(); };
    ASSERT_TRUE(desk.desk().until(listed));
  }

  ApplicationsDesk desk{GetParam()};
  std::vector<xcb_window_t> windows;
};

INSTANTIATE_TEST_SUITE_P(EachWindowManager, ManagerFaultsTest, testing::ValuesIn(kWindowManagers),
                         nameOfWindowManager);

TEST_P(ManagerFaultsTest, OneThatDiesIsNotWaitedForAndTheNextOneIsAsked) {
  ASSERT_NO_FATAL_FAILURE(loseManagerIn("hide"));
  desk.tell("hide");
  ASSERT_TRUE(desk.allMinimised(windows));

  ASSERT_NO_FATAL_FAILURE(loseManagerIn("show"));
  desk.tell("hide");
  ASSERT_TRUE(desk.allMinimised(windows));
  desk.tell("show");
  ASSERT_TRUE(desk.allShown(windows));
  // One that was waited for would have been complained of.
  EXPECT_EQ(desk.probe().errorOutput(), "");
}

}  // namespace
