// The whole mode on shells that paint the background themselves.

#include <sched.h>
#include <unistd.h>

#include <fstream>

#include "desktop/program/ShellDesk.h"

using harness::Image;
using harness::Rect;

namespace {

class ShellTest : public testing::TestWithParam<Shell> {
 protected:
  ShellDesk shell{GetParam()};
};

Shell withoutIcons() {
  Shell shell = kCinnamon;
  shell.name = "CinnamonWithoutIcons";
  shell.hasIcons = false;
  shell.settings.push_back({"org.nemo.desktop", "desktop-layout", "false::false"});
  return shell;
}

INSTANTIATE_TEST_SUITE_P(On, ShellTest, testing::Values(INSTALLED_SHELLS),
                         [](const auto& row) { return row.param.name; });

TEST_P(ShellTest, AllFiveComeAndGoAndTheScreenIsAsBefore) {
  ASSERT_TRUE(shell.startShell());
  shell.launch();
  const std::vector<Image> before = shell.photograph();
  const std::string backgrounds = shell.backgrounds();

  shell.press();
  ASSERT_TRUE(shell.inTheMode());
  if (GetParam().canBeQuiet) {
    ASSERT_TRUE(shell.notify());
    (void)shell.photograph();
    EXPECT_TRUE(shell.showsThePictureOnly()) << "a notification is kept back";
  }

  shell.press();
  EXPECT_TRUE(shell.looksAsIn(before));
  EXPECT_EQ(shell.backgrounds(), backgrounds);
  ASSERT_TRUE(shell.notify());
  EXPECT_TRUE(shell.changesFrom(before)) << "and shown again after the mode";
}

class ShellWithIcons : public ShellTest {};

INSTANTIATE_TEST_SUITE_P(On, ShellWithIcons, testing::Values(SHELLS_WITH_ICONS),
                         [](const auto& row) { return row.param.name; });

TEST_P(ShellWithIcons, IconsOfAnotherMonitorAreCoveredAsItComes) {
  ASSERT_TRUE(shell.startShell());
  shell.launch();
  shell.press();
  ASSERT_TRUE(shell.inTheMode());
  const std::vector<Rect> both = shell.desk().server().monitors();
  for (const std::vector<Rect>& monitors : {std::vector{both.front()}, both}) {
    shell.desk().server().setMonitors(monitors);
    (void)shell.photograph();
    EXPECT_TRUE(shell.showsThePictureOnly()) << monitors.size();
  }
}

#ifdef CALMDECK_OVERRIDE
TEST(NemoTest, StartsAnewUnderTheCovers) {
  ShellDesk shell(kCinnamon);
  shell.install("org.nemo.gschema.xml", CALMDECK_OVERRIDE);
  ASSERT_TRUE(shell.startShell());
  shell.launch();
  shell.press();
  ASSERT_TRUE(shell.inTheMode());
  const std::size_t windows = shell.iconWindows();
  shell.killIcons();
  ASSERT_TRUE(shell.desk().until([&] { return shell.iconWindows() == 0; }));
  // Its session does that.
  ASSERT_TRUE(shell.desk().until([&] { return shell.iconWindows() == windows; }));
  (void)shell.photograph();
  EXPECT_TRUE(shell.showsThePictureOnly());
}
#endif

}  // namespace

/// nemo-desktop refuses to run as root, so root becomes nobody in a name space of its own.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const uid_t user = geteuid();
  const gid_t group = getegid();
  if (user == 0 && unshare(CLONE_NEWUSER) == 0) {
    constexpr int kNobody = 65534;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/gid_map") << kNobody << ' ' << group << " 1";
    std::ofstream("/proc/self/uid_map") << kNobody << ' ' << user << " 1";
  }
  return RUN_ALL_TESTS();
}
