// The mode, which asks for quiet and does nothing else, beside the daemons of the desktops.

#include <gmock/gmock.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "desktop/harness/DesktopConfiguration.h"
#include "desktop/harness/ShortcutProgram.h"

namespace {

using harness::NotificationDaemon;
using ::testing::HasSubstr;

constexpr NotificationDaemon kDunst = NotificationDaemon::Dunst;
constexpr const char* kNotifications = "org.freedesktop.Notifications";
constexpr const char* kNoSuchObject = "NSAppleScriptErrorNumber = \"-1728\"";

// What sets the state when "true" or "false" is added.
std::vector<std::string> writer(NotificationDaemon kind) {
  switch (kind) {
    case NotificationDaemon::XfceNotifyd:
      return {"xfconf-query", "-c", "xfce4-notifyd", "-p", "/do-not-disturb",
              "-n",           "-t", "bool",          "-s"};
    case NotificationDaemon::Dunst:
      return {"dunstctl", "set-paused"};
    default:
      return {"gsettings", "set", "org.mate.NotificationDaemon", "do-not-disturb"};
  }
}

/// A desktop with a notification daemon and the program.
class QuietDesk : public harness::XDesk {
 public:
  explicit QuietDesk(const harness::DeskOptions& options) : XDesk(options) {}

  void launch() { program_.emplace(*this, std::vector<std::string>{"Dnd"}); }
  [[nodiscard]] harness::ShortcutProgram& program() { return *program_; }
  /// Wants quiet and its end in turns. Returns when nobody has anything left to do.
  void toggle() { program_->toggle(); }
  void rest() {
    ASSERT_TRUE(until([this] { return home().isAtRest(); }));
  }
  void expectNoComplaint() {
    program_->quit();
    EXPECT_EQ(program_->printed(), "");
    EXPECT_EQ(program_->complaints("calmdeck.notifications:"), 0U);
  }

  /// The daemon's state, as its desktop's own tools tell and change it; none when they cannot.
  [[nodiscard]] std::optional<bool> isOn(NotificationDaemon kind) const {
    return harness::doNotDisturb(*this, kind);
  }
  /// What the user's settings have of it, without any default; empty where they have nothing.
  [[nodiscard]] std::string stored(NotificationDaemon kind) const {
    if (kind == NotificationDaemon::Mate)
      return run({"dconf", "read", "/org/mate/notification-daemon/do-not-disturb"}).output;
    const auto on = isOn(kind);
    return on ? std::to_string(static_cast<int>(*on)) : "";
  }
  [[nodiscard]] bool becomes(NotificationDaemon kind, bool on) const {
    return until([&] { return isOn(kind) == on; });
  }
  void switchByHand(NotificationDaemon kind, bool on) {
    const std::string value = on ? "true" : "false";
    if (kind == NotificationDaemon::Lxqt) {
      home().writeConfig("lxqt/notifications.conf", "[General]\ndoNotDisturb=" + value + "\n");
    } else {
      std::vector<std::string> command = writer(kind);
      command.push_back(value);
      mustRun(command);
    }
    rest();
  }

 private:
  std::optional<harness::ShortcutProgram> program_;
};

class EveryDaemon : public ::testing::TestWithParam<NotificationDaemon> {};

INSTANTIATE_TEST_SUITE_P(, EveryDaemon,
                         ::testing::Values(NotificationDaemon::XfceNotifyd, kDunst,
                                           NotificationDaemon::Mate, NotificationDaemon::Lxqt),
                         ::testing::PrintToStringParamName());

TEST_P(EveryDaemon, IsSilencedWhateverTheUserDidByHandAndStaysSoWhenTheProgramEnds) {
  QuietDesk desk({.notifications = GetParam()});
  desk.launch();
  desk.switchByHand(GetParam(), true);
  desk.toggle();
  EXPECT_EQ(desk.isOn(GetParam()), true) << "a click would switch it off";
  desk.toggle();
  EXPECT_TRUE(desk.becomes(GetParam(), false));
  desk.toggle();
  EXPECT_TRUE(desk.becomes(GetParam(), true));
  desk.switchByHand(GetParam(), false);
  desk.toggle();
  EXPECT_EQ(desk.isOn(GetParam()), false) << "a click would switch it on";
  desk.toggle();
  EXPECT_TRUE(desk.becomes(GetParam(), true));
  desk.expectNoComplaint();
  EXPECT_EQ(desk.isOn(GetParam()), true);
}

/// Whose switch is still there when they do not run.
using SettingsOfADaemon = EveryDaemon;

INSTANTIATE_TEST_SUITE_P(, SettingsOfADaemon,
                         ::testing::Values(NotificationDaemon::XfceNotifyd,
                                           NotificationDaemon::Mate, NotificationDaemon::Lxqt),
                         ::testing::PrintToStringParamName());

TEST_P(SettingsOfADaemon, AreSwitchedAndAsBeforeAlsoWhenItHasEnded) {
  QuietDesk desk({.notifications = GetParam()});
  desk.launch();
  const std::optional<bool> before = desk.isOn(GetParam());
  desk.startNotifications(NotificationDaemon::None);
  ASSERT_TRUE(desk.until([&] { return !desk.bus().hasOwner(kNotifications); }));
  for (const bool on : {true, false}) {
    desk.toggle();
    EXPECT_TRUE(desk.until([&] { return desk.isOn(GetParam()) == (on ? true : before); }))
        << "what was not set is not set afterwards";
  }
  desk.expectNoComplaint();
}

TEST_P(SettingsOfADaemon, AreAsBeforeAlsoWhenTheRunThatSwitchedThemWasKilled) {
  QuietDesk desk({.notifications = GetParam()});
  desk.launch();
  ASSERT_EQ(desk.stored(GetParam()), "");
  desk.toggle();
  ASSERT_TRUE(desk.becomes(GetParam(), true));
  desk.program().process().kill();
  desk.launch();
  desk.toggle();
  desk.toggle();
  EXPECT_TRUE(desk.until([&] { return desk.stored(GetParam()).empty(); }))
      << desk.stored(GetParam());
  EXPECT_FALSE(std::filesystem::exists(desk.home().home() / ".local/state/calmdeck"));
}

TEST(MateTest, IsSilencedBeforeItsFirstNotification) {
  QuietDesk desk({.environment = {{"XDG_CURRENT_DESKTOP", "MATE"}}});
  constexpr NotificationDaemon kMate = NotificationDaemon::Mate;
  desk.bus().offer(kNotifications, harness::program(kMate).argv.front());
  desk.launch();
  for (const bool on : {true, false}) {
    desk.toggle();
    EXPECT_TRUE(desk.becomes(kMate, on));
  }
  EXPECT_FALSE(desk.bus().hasOwner(kNotifications)) << "silence starts nothing";
  desk.expectNoComplaint();
}

TEST(AwesomeTest, IsSilencedWhateverTheUserDidByHand) {
  QuietDesk desk({});
  const auto awesome = desk.start({"awesome"});
  ASSERT_TRUE(desk.until([&] { return desk.bus().hasOwner(kNotifications); }))
      << awesome->errorOutput();
  const auto runs = [&](const std::string& lua) {
    return desk.bus()
        .call(kNotifications, "/", "org.awesomewm.awful.Remote.Eval", {"string:" + lua})
        .value_or("");
  };
  const auto isOn = [&] { return runs("return require('naughty').is_suspended()"); };
  desk.launch();
  desk.toggle();
  EXPECT_THAT(isOn(), HasSubstr("true"));
  (void)runs("require('naughty').resume()");
  desk.toggle();
  EXPECT_THAT(isOn(), HasSubstr("false")) << "a click would switch it on";
  (void)runs("require('naughty').suspend()");
  desk.toggle();
  EXPECT_THAT(isOn(), HasSubstr("true")) << "a click would switch it off";
  desk.toggle();
  EXPECT_THAT(isOn(), HasSubstr("false"));
  desk.expectNoComplaint();
}

TEST(DunstTest, IsSilencedAgainAfterARestart) {
  QuietDesk desk({.notifications = kDunst});
  desk.launch();
  desk.toggle();
  desk.startNotifications(kDunst);
  EXPECT_TRUE(desk.becomes(kDunst, true)) << "dunst itself forgets";
  desk.switchByHand(kDunst, false);
  desk.startNotifications(kDunst);
  desk.rest();
  EXPECT_EQ(desk.isOn(kDunst), false) << "the user had switched it off";
}

TEST(DunstTest, IsSilencedWhenItStartsAtLast) {
  QuietDesk desk({});
  desk.bus().offer(kNotifications, "/usr/bin/dunst");
  desk.launch();
  desk.toggle();
  EXPECT_FALSE(desk.bus().hasOwner(kNotifications)) << "silence starts nothing";
  EXPECT_TRUE(desk.becomes(kDunst, true)) << "dunstctl has it started";
  desk.expectNoComplaint();
}

TEST(HangingDaemon, CostsALineAndEndsInTheLastState) {
  QuietDesk desk({.notifications = kDunst});
  desk.launch();
  desk.rest();
  desk.notifications().freeze();
  desk.toggle();
  EXPECT_TRUE(desk.program().process().complains("dunst does not answer"));
  desk.toggle();
  desk.notifications().thaw();
  EXPECT_EQ(desk.isOn(kDunst), false) << "it answers this after all that lay before it";
  desk.toggle();
  EXPECT_EQ(desk.isOn(kDunst), true) << "it is what it was before";
}

TEST(HangingDaemon, IsSilencedWhenItGoesOnAlsoIfNobodyKnewYetWhoItIs) {
  QuietDesk desk({.notifications = kDunst});
  desk.notifications().freeze();
  desk.launch();
  desk.toggle();
  EXPECT_TRUE(
      desk.program().process().complains("does not answer; it will be switched when it does"));
  desk.notifications().thaw();
  EXPECT_TRUE(desk.becomes(kDunst, true));
  EXPECT_EQ(desk.program().printed(), "");
}

TEST(DaemonWithoutASwitch, EndsTheScriptAndTheEarlierWishAndIsNamedOnce) {
  QuietDesk desk({.notifications = kDunst});
  desk.launch();
  desk.toggle();
  desk.startNotifications(NotificationDaemon::Plain);
  for (int time = 0; time < 2; ++time) {
    desk.toggle();
    EXPECT_TRUE(desk.program().process().waitForLine(kNoSuchObject));
  }
  desk.toggle();
  desk.startNotifications(kDunst);
  desk.rest();
  EXPECT_EQ(desk.isOn(kDunst), false);
  desk.toggle();
  EXPECT_EQ(desk.isOn(kDunst), true) << "another daemon, another answer";
  EXPECT_THAT(desk.program().printed(), HasSubstr("get checkbox \\\"Do Not Disturb\\\" of window"));
  EXPECT_EQ(desk.program().complaints("cannot be silenced: \"Notification Daemon\" by \"GNOME\""),
            1U);
  EXPECT_EQ(desk.program().complaints("calmdeck.notifications:"), 1U);
}

TEST(NoDaemon, EndsTheScript) {
  for (const bool hasBus : {true, false}) {
    QuietDesk desk({.sessionBus = hasBus});
    desk.launch();
    for (int time = 0; time < 2; ++time) {
      desk.toggle();
      EXPECT_TRUE(desk.program().process().waitForLine(kNoSuchObject));
    }
    EXPECT_EQ(desk.program().complaints(
                  std::string("cannot be silenced: ") +
                  (hasBus ? "nothing shows notifications" : "there is no session bus")),
              1U);
  }
}

}  // namespace
