#include <gmock/gmock.h>

#include "desktop/program/ProgramDesk.h"

namespace {

constexpr const char* kName = "org.calmdeck.Calmdeck";
constexpr const char* kPath = "/org/calmdeck/Calmdeck";

/// The program over the bus, with the desktops' own clients.
class ActionsTest : public testing::Test {
 protected:
  ActionsTest() { desk.writeSettings({"SpeakerOff"}); }
  /// What it tells of itself, as dbus-send prints it.
  [[nodiscard]] std::string tells(const std::string& property) {
    return desk.bus().property(kName, kPath, kName, property).value_or("nothing");
  }

  ProgramDesk program{{.windowManager = harness::WindowManager::Xfwm4,
                       .panel = harness::Panel::XfcePanel,
                       .sound = harness::SoundServerKind::PulseAudio}};
  harness::XDesk& desk = program.desk();
};

TEST_F(ActionsTest, TheRunningProgramDoesThemAndShowsItself) {
  ASSERT_TRUE(program.start());
  desk.toggleMode();
  EXPECT_TRUE(program.says("Pressed at .*"));
  EXPECT_TRUE(program.sinkMuted(true));
  const auto sent = desk.run({"dbus-send", "--print-reply", std::string("--dest=") + kName,
                              "/org/calmdeck/Calmdeck", "org.calmdeck.Calmdeck.Perform",
                              "string:toggle-presentation-mode"});
  ASSERT_TRUE(sent.succeeded()) << sent.errorOutput;
  EXPECT_TRUE(program.sinkMuted(false));
  desk.input().key("Escape");
  ASSERT_TRUE(program.closes());
  ASSERT_TRUE(desk.run({"gapplication", "launch", kName}).succeeded());
  EXPECT_TRUE(program.opens());
  desk.perform("preferences");
  EXPECT_TRUE(desk.awaitWindow(
      [](const harness::WindowInfo& window) { return window.name == "Preferences — Calmdeck"; }));
}

TEST_F(ActionsTest, OtherProgramsSeeTheModeAndTheVersion) {
  const auto logging = desk.startCalmdeck({{"QT_LOGGING_RULES", "calmdeck.*=true"}});
  ASSERT_TRUE(desk.until([&] { return desk.bus().hasOwner(kName); }));
  EXPECT_THAT(logging->errorOutput(),
              testing::StartsWith("calmdeck.process: Calmdeck " CALMDECK_VERSION " "));
  EXPECT_THAT(tells("Version"), testing::EndsWith(" " CALMDECK_VERSION));
  EXPECT_THAT(tells("PresentationMode"), testing::HasSubstr("false"));
  const auto listener = desk.start({"gdbus", "monitor", "--session", "-d", kName});
  ASSERT_TRUE(listener->waitForLine("is owned by"));
  for (const std::string mode : {"true", "false"}) {
    desk.toggleMode();
    EXPECT_TRUE(
        listener->waitForLine("PropertiesChanged.*'org.calmdeck.Calmdeck', .*"
                              "'PresentationMode': <" +
                              mode + ">"));
    EXPECT_THAT(tells("PresentationMode"), testing::HasSubstr(mode));
  }
}

TEST_F(ActionsTest, TheBusStartsTheProgramForOne) {
  desk.bus().offer(kName, CALMDECK_PROGRAM);
  const auto passedOn = desk.run({"dbus-update-activation-environment", "DISPLAY"});
  ASSERT_TRUE(passedOn.succeeded()) << passedOn.errorOutput;
  ASSERT_TRUE(desk.run({"gapplication", "action", kName, "toggle-presentation-mode"}).succeeded());
  EXPECT_TRUE(desk.until([&] { return desk.sound().sinkMuted(ProgramDesk::kSink); }));
  EXPECT_TRUE(desk.until([&] { return desk.openPopover().has_value(); }));
}

}  // namespace
