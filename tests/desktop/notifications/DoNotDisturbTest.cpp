#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "desktop/harness/DesktopConfiguration.h"
#include "desktop/harness/XDesk.h"

namespace {

using harness::NotificationDaemon;
using ::testing::HasSubstr;

/// A desktop with a notification daemon and the probe, which runs the panel's own script.
class DoNotDisturbDesk {
 public:
  explicit DoNotDisturbDesk(const harness::DeskOptions& options) : desk_(options) {}

  [[nodiscard]] harness::XDesk& desk() { return desk_; }

  /// Returns once the probe listens.
  void startProbe();
  [[nodiscard]] harness::Process& probe() { return *probe_; }
  /// Runs the script and returns when it has ended. False when the probe has not come back after
  /// ten seconds, twenty times what it may wait.
  [[nodiscard]] bool turn(const std::string& onOrOff);
  /// The same with a script that only reads the state, for which it waits until the probe knows the
  /// daemon and has told it all that it is to be told.
  [[nodiscard]] bool look() { return turn("look"); }
  /// Waits until one more script has ended with the error of this number.
  [[nodiscard]] bool scriptFailed(int number);
  /// Ends the probe. What it has said is complete after that.
  void quitProbe();
  /// The errors that scripts have ended with, in full.
  [[nodiscard]] std::string scriptErrors() const { return probe_->output(); }
  /// How many lines of standard error speak of `topic`.
  [[nodiscard]] int complaints(const std::string& topic = "calmdeck.notifications:") const;

  /// The daemon's state, as its desktop's own tools tell and change it; none when they cannot.
  [[nodiscard]] std::optional<bool> isOn(harness::NotificationDaemon kind) const;
  [[nodiscard]] bool becomes(harness::NotificationDaemon kind, bool on) const;
  void switchByHand(harness::NotificationDaemon kind, bool on) const;

 private:
  harness::XDesk desk_;
  std::unique_ptr<harness::Process> probe_;
};

constexpr const char* kProbe = "org.calmdeck.Probe";

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

void DoNotDisturbDesk::startProbe() {
  probe_ = desk_.start({DO_NOT_DISTURB_PROBE});
  if (!desk_.until([&] { return desk_.bus().hasOwner(kProbe); })) {
    throw std::runtime_error("the probe did not start: " + probe_->errorOutput());
  }
}

bool DoNotDisturbDesk::turn(const std::string& onOrOff) {
  return desk_.bus().call(kProbe, "/", std::string(kProbe) + "." + onOrOff, {}).has_value();
}

bool DoNotDisturbDesk::scriptFailed(int number) {
  const std::string line = "NSAppleScriptErrorNumber = \"" + std::to_string(number) + "\"";
  return probe_->waitForLine(line).has_value();
}

void DoNotDisturbDesk::quitProbe() {
  if (probe_->terminate(harness::kPatience).signal != 0) {
    throw std::runtime_error("the probe did not end by itself: " + probe_->errorOutput());
  }
}

int DoNotDisturbDesk::complaints(const std::string& topic) const {
  std::istringstream lines(probe_->errorOutput());
  int count = 0;
  for (std::string line; std::getline(lines, line);) {
    if (line.find(topic) != std::string::npos) ++count;
  }
  return count;
}

std::optional<bool> DoNotDisturbDesk::isOn(NotificationDaemon kind) const {
  return harness::doNotDisturb(desk_, kind);
}

bool DoNotDisturbDesk::becomes(NotificationDaemon kind, bool on) const {
  return desk_.until([&] { return isOn(kind) == on; });
}

void DoNotDisturbDesk::switchByHand(NotificationDaemon kind, bool on) const {
  const std::string value = on ? "true" : "false";
  if (kind == NotificationDaemon::Lxqt) {
    desk_.home().writeConfig("lxqt/notifications.conf", "[General]\ndoNotDisturb=" + value + "\n");
    return;
  }
  std::vector<std::string> command = writer(kind);
  command.push_back(value);
  if (!desk_.run(command).succeeded()) throw std::runtime_error("cannot run " + command.front());
}

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

constexpr const char* kName = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";

/// By a daemon that offers inhibitions, which is Plasma or unknown.
class InhibitionTest : public ::testing::Test {
 protected:
  void start(const std::string& name, const std::string& vendor) {
    daemon_.reset();
    daemon_ = desk.desk().start({INHIBITION_DAEMON, name, vendor});
    ASSERT_TRUE(desk.desk().until([&] { return desk.desk().bus().hasOwner(kName); }));
  }
  [[nodiscard]] bool is(bool inhibited) {
    const auto answer = desk.desk().bus().property(kName, kPath, kName, "Inhibited");
    return answer && answer->find(inhibited ? "true" : "false") != std::string::npos;
  }
  [[nodiscard]] bool becomes(bool inhibited) {
    return desk.desk().until([&] { return is(inhibited); });
  }

  void ask(const std::string& method, const std::vector<std::string>& arguments) {
    ASSERT_TRUE(desk.desk().bus().call(kName, kPath, std::string(kName) + "." + method, arguments));
  }

  DoNotDisturbDesk desk{{}};

 private:
  std::unique_ptr<harness::Process> daemon_;
};

TEST_F(InhibitionTest, IsHeldWhileItIsWantedAndTakenAgainAfterARestart) {
  start("Plasma", "KDE");
  desk.startProbe();
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(desk.turn("on"));
    EXPECT_TRUE(becomes(true));
    ASSERT_TRUE(desk.turn("off"));
    EXPECT_TRUE(becomes(false));
  }
  ASSERT_TRUE(desk.turn("on"));
  start("quiet", "somebody");
  EXPECT_TRUE(becomes(true)) << "what it can do counts, not its name";
  desk.quitProbe();
  EXPECT_EQ(desk.scriptErrors(), "");
}

TEST_F(InhibitionTest, OursIsTakenBesideSomebodyElsesAndOnlyOursIsEnded) {
  start("Plasma", "KDE");
  desk.startProbe();
  ask("Inhibit", {"string:other", "string:quiet", "dict:string:string:"});
  ASSERT_TRUE(desk.turn("on"));
  ask("UnInhibit", {"uint32:1"});
  EXPECT_TRUE(becomes(true)) << "the mode is still on";
  ask("Inhibit", {"string:other", "string:quiet", "dict:string:string:"});
  ASSERT_TRUE(desk.turn("off"));
  EXPECT_TRUE(becomes(true));
  ask("UnInhibit", {"uint32:3"});
  EXPECT_TRUE(becomes(false));
  desk.quitProbe();
  EXPECT_EQ(desk.scriptErrors(), "");
  EXPECT_EQ(desk.complaints(), 0);
}

TEST_F(InhibitionTest, IsTakenAgainWhenTheUserHasEndedAll) {
  start("Plasma", "KDE");
  desk.startProbe();
  ASSERT_TRUE(desk.turn("on"));
  ASSERT_TRUE(becomes(true));
  ask("EndAll", {});
  ASSERT_TRUE(becomes(false));
  // More than once, as the probe may hear of the end a little later than we do.
  EXPECT_TRUE(desk.desk().until([&] { return desk.turn("on") && is(true); }));
}

}  // namespace
