// The whole mode on shells that paint the background themselves.

#include <sched.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

#include "desktop/program/ShellDesk.h"

using harness::Image;
using harness::Rect;

namespace {

class ShellTest : public testing::TestWithParam<Shell> {
 protected:
  void SetUp() override { ASSERT_TRUE(shell.start()); }
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
  const std::vector<Image> before = shell.photograph();
  const std::string backgrounds = shell.backgrounds();

  shell.press();
  ASSERT_TRUE(shell.inTheMode());
  if (GetParam().canBeQuiet) {
    shell.desk.notify("A letter");
    (void)shell.photograph();
    EXPECT_TRUE(shell.inTheMode()) << "a notification is kept back";
  }

  shell.press();
  EXPECT_TRUE(shell.until([&] { return shell.photograph() == before; }));
  EXPECT_EQ(shell.backgrounds(), backgrounds);
  shell.desk.notify("A letter");
  EXPECT_TRUE(shell.until([&] { return shell.seen() != before; })) << "shown after the mode";
}

class ShellWithIcons : public ShellTest {};

INSTANTIATE_TEST_SUITE_P(On, ShellWithIcons, testing::Values(SHELLS_WITH_ICONS),
                         [](const auto& row) { return row.param.name; });

TEST_P(ShellWithIcons, IconsOfAnotherMonitorAreCoveredAsItComes) {
  shell.press();
  ASSERT_TRUE(shell.inTheMode());
  const std::vector<Rect> both = shell.desk.server().monitors();
  for (const std::vector<Rect>& monitors : {std::vector{both.front()}, both}) {
    shell.desk.server().setMonitors(monitors);
    (void)shell.photograph();
    EXPECT_TRUE(shell.inTheMode()) << monitors.size();
  }
}

#ifdef CALMDECK_OVERRIDE
TEST(NemoTest, StartsAnewUnderTheCovers) {
  ShellDesk shell(kCinnamon);
  shell.install("org.nemo.gschema.xml", CALMDECK_OVERRIDE);
  ASSERT_TRUE(shell.start());
  shell.press();
  ASSERT_TRUE(shell.inTheMode());
  const auto windows = shell.desk.iconWindows();
  const auto process = shell.desk.x().number(windows.at(0).id, "_NET_WM_PID").value();
  ::kill(static_cast<pid_t>(process), SIGKILL);
  ASSERT_TRUE(shell.until([&] { return shell.desk.iconWindows().empty(); }));
  // Its session does that.
  ASSERT_TRUE(shell.until([&] { return shell.desk.iconWindows().size() == windows.size(); }));
  (void)shell.photograph();
  EXPECT_TRUE(shell.inTheMode());
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
