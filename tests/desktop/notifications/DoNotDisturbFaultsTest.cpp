#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "DoNotDisturbDesk.h"

namespace {

using harness::NotificationDaemon;
using ::testing::HasSubstr;

constexpr NotificationDaemon kDunst = NotificationDaemon::Dunst;
constexpr int kNoSuchObject = -1728;

bool complains(harness::Process& probe, const std::string& line) {
  return probe.waitForLine(line, harness::kPatience, harness::Stream::Error).has_value();
}

TEST(HangingDaemon, CostsALineAndEndsInTheLastState) {
  DoNotDisturbDesk desk({.notifications = kDunst});
  desk.startProbe();
  ASSERT_TRUE(desk.turn("off"));
  desk.desk().notifications().freeze();
  EXPECT_TRUE(desk.turn("on"));
  EXPECT_TRUE(complains(desk.probe(), "dunst does not answer"));
  EXPECT_TRUE(desk.turn("off"));
  desk.desk().notifications().thaw();
  EXPECT_EQ(desk.isOn(kDunst), false) << "it answers this after all that lay before it";
  EXPECT_TRUE(desk.turn("on"));
  EXPECT_EQ(desk.isOn(kDunst), true) << "it is what it was before";
}

TEST(HangingDaemon, IsSilencedWhenItGoesOn) {
  DoNotDisturbDesk desk({.notifications = kDunst});
  desk.desk().notifications().freeze();
  desk.startProbe();
  EXPECT_TRUE(desk.turn("on")) << "nobody knows yet who it is";
  EXPECT_TRUE(complains(desk.probe(), "does not answer; it will be switched when it does"));
  desk.desk().notifications().thaw();
  EXPECT_TRUE(desk.becomes(kDunst, true));
  desk.quitProbe();
  EXPECT_EQ(desk.scriptErrors(), "");
}

TEST(DaemonWithoutASwitch, EndsEachScriptAndIsNamedOnce) {
  DoNotDisturbDesk desk({.notifications = NotificationDaemon::Plain});
  desk.startProbe();
  ASSERT_TRUE(desk.turn("on"));
  EXPECT_TRUE(desk.scriptFailed(kNoSuchObject));
  ASSERT_TRUE(desk.turn("off"));
  EXPECT_TRUE(desk.scriptFailed(kNoSuchObject));
  desk.desk().startNotifications(kDunst);
  ASSERT_TRUE(desk.turn("on"));
  EXPECT_EQ(desk.isOn(kDunst), true) << "another daemon, another answer";
  desk.quitProbe();
  EXPECT_THAT(desk.scriptErrors(), HasSubstr("get checkbox \\\"Do Not Disturb\\\" of window 1"));
  EXPECT_EQ(desk.complaints("cannot be silenced: \"Notification Daemon\" by \"GNOME\""), 1);
  EXPECT_EQ(desk.complaints(), 1);
}

TEST(DaemonWithoutASwitch, IsWhereAnEarlierWishEnds) {
  DoNotDisturbDesk desk({.notifications = kDunst});
  desk.startProbe();
  ASSERT_TRUE(desk.turn("on"));
  desk.desk().startNotifications(NotificationDaemon::Plain);
  ASSERT_TRUE(desk.turn("off"));
  EXPECT_TRUE(desk.scriptFailed(kNoSuchObject));
  desk.desk().startNotifications(kDunst);
  ASSERT_TRUE(desk.look());
  EXPECT_EQ(desk.isOn(kDunst), false);
}

TEST(NoDaemon, EndsTheScript) {
  DoNotDisturbDesk desk({});
  desk.startProbe();
  ASSERT_TRUE(desk.turn("on"));
  ASSERT_TRUE(desk.turn("on"));
  EXPECT_TRUE(desk.scriptFailed(kNoSuchObject));
  EXPECT_TRUE(desk.scriptFailed(kNoSuchObject));
  desk.quitProbe();
  EXPECT_EQ(desk.complaints("cannot be silenced: nothing shows notifications"), 1);
}

TEST(NoBus, EndsTheScript) {
  harness::XDesk desk({.sessionBus = false});
  const harness::RunResult run = desk.run({DO_NOT_DISTURB_PROBE, "on"});
  EXPECT_TRUE(run.succeeded()) << run.errorOutput;
  EXPECT_THAT(run.output, HasSubstr(R"(NSAppleScriptErrorNumber = "-1728")"));
  EXPECT_THAT(run.errorOutput, HasSubstr("cannot be silenced: there is no session bus"));
}

}  // namespace
