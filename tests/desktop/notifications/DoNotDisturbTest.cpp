#include <gtest/gtest.h>

#include <string>

#include "DoNotDisturbDesk.h"

namespace {

using harness::NotificationDaemon;

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
  desk.quitProbe();
  EXPECT_EQ(desk.scriptErrors(), "");
  EXPECT_EQ(desk.complaints(), 0);
}

TEST_P(EveryDaemon, StaysSilencedWhenTheProgramEnds) {
  DoNotDisturbDesk desk({.notifications = GetParam()});
  desk.startProbe();
  ASSERT_TRUE(desk.turn("on"));
  desk.quitProbe();
  EXPECT_TRUE(desk.becomes(GetParam(), true));
}

INSTANTIATE_TEST_SUITE_P(, EveryDaemon,
                         ::testing::Values(NotificationDaemon::XfceNotifyd,
                                           NotificationDaemon::Dunst, NotificationDaemon::Mate,
                                           NotificationDaemon::Lxqt),
                         [](const auto& parameter) {
                           std::string name = harness::program(parameter.param).name;
                           std::erase(name, '-');
                           return name;
                         });

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
  desk.offerDunst();
  desk.startProbe();
  ASSERT_TRUE(desk.turn("on"));
  EXPECT_FALSE(desk.desk().bus().hasOwner("org.freedesktop.Notifications"))
      << "silence starts nothing";
  EXPECT_TRUE(desk.becomes(kDunst, true)) << "dunstctl has it started";
  desk.quitProbe();
  EXPECT_EQ(desk.scriptErrors(), "");
  EXPECT_EQ(desk.complaints(), 0);
}

}  // namespace
