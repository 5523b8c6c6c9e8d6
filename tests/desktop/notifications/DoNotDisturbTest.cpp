#include <gtest/gtest.h>

#include <string>

#include "DoNotDisturbDesk.h"

namespace {

using harness::NotificationDaemon;

constexpr const char* kNotifications = "org.freedesktop.Notifications";

std::string nameOf(const ::testing::TestParamInfo<NotificationDaemon>& daemon) {
  std::string name = harness::program(daemon.param).name;
  std::erase(name, '-');
  return name;
}

void endsWithoutComplaint(DoNotDisturbDesk& desk) {
  desk.quitProbe();
  EXPECT_EQ(desk.scriptErrors(), "");
  EXPECT_EQ(desk.complaints(), 0);
}

class EveryDaemon : public ::testing::TestWithParam<NotificationDaemon> {};

TEST_P(EveryDaemon, IsSilencedByTheScriptAndByNothingElse) {
  DoNotDisturbDesk desk({.notifications = GetParam()});
  desk.startProbe();
  ASSERT_TRUE(desk.turn("on"));
  EXPECT_TRUE(desk.becomes(GetParam(), true));
  ASSERT_TRUE(desk.turn("on")) << "on already: not clicked, as a click would switch it off";
  EXPECT_EQ(desk.isOn(GetParam()), true);
  desk.switchByHand(GetParam(), false);
  ASSERT_TRUE(desk.turn("on")) << "the user had switched it off";
  EXPECT_TRUE(desk.becomes(GetParam(), true));
  ASSERT_TRUE(desk.turn("off"));
  EXPECT_TRUE(desk.becomes(GetParam(), false));
  desk.switchByHand(GetParam(), true);
  ASSERT_TRUE(desk.turn("off")) << "turning off always turns off";
  EXPECT_TRUE(desk.becomes(GetParam(), false));
  ASSERT_TRUE(desk.turn("on"));
  endsWithoutComplaint(desk);
  EXPECT_TRUE(desk.becomes(GetParam(), true)) << "it stays when the program ends";
}

INSTANTIATE_TEST_SUITE_P(, EveryDaemon,
                         ::testing::Values(NotificationDaemon::XfceNotifyd,
                                           NotificationDaemon::Dunst, NotificationDaemon::Mate,
                                           NotificationDaemon::Lxqt),
                         nameOf);

/// Whose switch is still there when they do not run.
class SettingsOfADaemon : public EveryDaemon {};

TEST_P(SettingsOfADaemon, AreSwitchedAlsoWhenItHasEnded) {
  DoNotDisturbDesk desk({.notifications = GetParam()});
  desk.startProbe();
  ASSERT_TRUE(desk.turn("on"));
  EXPECT_TRUE(desk.becomes(GetParam(), true));
  desk.desk().startNotifications(NotificationDaemon::None);
  ASSERT_TRUE(desk.desk().until([&] { return !desk.desk().bus().hasOwner(kNotifications); }));
  for (const bool on : {false, true, false}) {
    ASSERT_TRUE(desk.turn(on ? "on" : "off"));
    EXPECT_TRUE(desk.becomes(GetParam(), on));
  }
  endsWithoutComplaint(desk);
}

INSTANTIATE_TEST_SUITE_P(, SettingsOfADaemon,
                         ::testing::Values(NotificationDaemon::XfceNotifyd,
                                           NotificationDaemon::Mate, NotificationDaemon::Lxqt),
                         nameOf);

TEST(MateTest, IsSilencedBeforeItsFirstNotification) {
  DoNotDisturbDesk desk({.environment = {{"XDG_CURRENT_DESKTOP", "MATE"}}});
  constexpr NotificationDaemon kMate = NotificationDaemon::Mate;
  desk.desk().bus().offer(kNotifications, harness::program(kMate).argv.front());
  desk.startProbe();
  for (const bool on : {true, false}) {
    ASSERT_TRUE(desk.turn(on ? "on" : "off"));
    EXPECT_TRUE(desk.becomes(kMate, on));
  }
  EXPECT_FALSE(desk.desk().bus().hasOwner(kNotifications)) << "silence starts nothing";
  endsWithoutComplaint(desk);
}

class DunstTest : public ::testing::Test {
 protected:
  static constexpr NotificationDaemon kDunst = NotificationDaemon::Dunst;
};

TEST_F(DunstTest, IsSilencedAgainAfterARestart) {
  DoNotDisturbDesk desk({.notifications = kDunst});
  desk.startProbe();
  ASSERT_TRUE(desk.turn("on"));
  desk.desk().startNotifications(kDunst);
  EXPECT_TRUE(desk.becomes(kDunst, true)) << "dunst itself forgets";
  desk.switchByHand(kDunst, false);
  desk.desk().startNotifications(kDunst);
  ASSERT_TRUE(desk.look());
  EXPECT_EQ(desk.isOn(kDunst), false) << "the user had switched it off";
}

TEST_F(DunstTest, IsSilencedWhenItStartsAtLast) {
  DoNotDisturbDesk desk({});
  desk.desk().bus().offer(kNotifications, "/usr/bin/dunst");
  desk.startProbe();
  ASSERT_TRUE(desk.turn("on"));
  EXPECT_FALSE(desk.desk().bus().hasOwner(kNotifications)) << "silence starts nothing";
  EXPECT_TRUE(desk.becomes(kDunst, true)) << "dunstctl has it started";
  endsWithoutComplaint(desk);
}

}  // namespace
