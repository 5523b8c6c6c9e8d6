#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>

#include "desktop/program/ProgramDesk.h"

using harness::DeskOptions;
using harness::ProcessEnd;
using harness::SoundServerKind;
using harness::WindowManager;
using testing::SizeIs;

namespace {

namespace fs = std::filesystem;

class RestartTest : public testing::Test {
 protected:
  void terminate() {
    program.program().signal(SIGTERM);
    EXPECT_EQ(program.program().waitForExit(), (ProcessEnd{0, 0}));
  }

  ProgramDesk program{
      DeskOptions{.windowManager = WindowManager::Openbox, .sound = SoundServerKind::PulseAudio}};
  const harness::PrivateHome& home = program.desk().home();
  const fs::path folder = home.config() / "calmdeck";
};

TEST_F(RestartTest, TerminationLeavesTheEffectsAndTheNextStartHasTheSwitchesAndNotTheMode) {
  ASSERT_TRUE(program.start());
  ASSERT_TRUE(program.clickSwitch("Notifications"));
  ASSERT_TRUE(program.muteByTheMode());
  terminate();
  EXPECT_TRUE(program.sinkMuted(true));

  ASSERT_TRUE(program.start());
  EXPECT_TRUE(program.switchedOn({"Notifications", "Speaker"}));
  EXPECT_TRUE(program.sinkMuted(true)) << "starting takes nothing back";
  ASSERT_TRUE(program.clickSwitch("Presentation mode"));
  ASSERT_TRUE(program.switchedOn({"Presentation mode", "Notifications", "Speaker"}));
  ASSERT_TRUE(program.clickSwitch("Presentation mode"));
  EXPECT_TRUE(program.sinkMuted(false));
}

TEST_F(RestartTest, SettingsOfTheWrongTypeCountAsAbsent) {
  home.writeConfig("calmdeck/settings.json", R"({"kUserdefaultsToggleSpeakerOff": "yes",
    "kUserdefaultsToggleDnd": 1, "kUserdefaultsToggleHideActiveApps": null,
    "kUserdefaultsToggleWallpaper": [true], "kUserdeaultsLaunchAtLogin": {"a": 1},
    "kUserdefaultsToggleDesktopIcons": true, "ofANewerVersion": {"kept": [1]}})");
  ASSERT_TRUE(program.start());
  EXPECT_TRUE(program.switchedOn({"Desktop icons"}));
  ASSERT_TRUE(program.muteByTheMode());
  EXPECT_THAT(program.complaints(""), testing::Each(testing::Not(testing::HasSubstr("defaults"))));
  terminate();
  const std::string stored = harness::textOf(folder / "settings.json");
  EXPECT_THAT(stored, testing::ContainsRegex("\"kUserdefaultsToggleSpeakerOff\": ?true"));
  EXPECT_THAT(stored, testing::HasSubstr("ofANewerVersion"));
}

TEST_F(RestartTest, ABrokenSettingsFileIsSetAsideWithOneLine) {
  const std::string broken = "{\"kUserdefaultsToggleDnd\": tru";
  home.writeConfig("calmdeck/settings.json", broken);
  ASSERT_TRUE(program.start());
  EXPECT_THAT(program.complaints("defaults"), SizeIs(1));
  EXPECT_TRUE(program.switchedOn({}));
  ASSERT_TRUE(program.clickSwitch("Speaker"));
  ASSERT_TRUE(program.switchedOn({"Speaker"}));
  terminate();

  std::vector<std::string> others;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    if (entry.path().filename() != "settings.json") others.push_back(harness::textOf(entry));
  }
  EXPECT_THAT(others, testing::ElementsAre(broken));
}

}  // namespace
