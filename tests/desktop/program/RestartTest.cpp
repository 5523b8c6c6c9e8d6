#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <sstream>

#include "desktop/program/ProgramDesk.h"

using harness::DeskOptions;
using harness::ProcessEnd;
using harness::SoundServerKind;
using harness::WindowManager;

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

TEST_F(RestartTest, AFirstLaunchMakesAnEntryThatStartsTheProgramAtLogin) {
  const fs::path entry = home.config() / "autostart/org.calmdeck.Calmdeck.desktop";
  ASSERT_TRUE(program.start());
  EXPECT_THAT(harness::textOf(entry),
              testing::HasSubstr("\nExec=" + fs::canonical(CALMDECK_PROGRAM).string()));
  EXPECT_THAT(program.complaints("login"), testing::IsEmpty());
  terminate();
  const auto launcher = program.desk().start({"gio", "launch", entry.string()});
  EXPECT_TRUE(program.opens());
}

// --- The shortcuts, stored by an earlier run and pressed on the real keyboard ---

constexpr const char* kSource = "microphone";
constexpr const char* kToggle = "ctrl+alt+p";
constexpr const char* kMuteMic = "ctrl+alt+m";

class ShortcutTest : public testing::Test {
 protected:
  void SetUp() override {
    desk.home().writeConfig("calmdeck/settings.json",
                            R"({"kUserdefaultsToggleSpeakerOff": true,
                                "kuserdefault_ToggleAppShortcut": "p",
                                "kuserdefault_ToggleAppFlag": [12, 13],
                                "kuserdefault_MuteMicShortcut": "M",
                                "kuserdefault_MuteMicFlag": [12, 13]})");
    desk.sound().addSource(kSource);
    ASSERT_TRUE(program.start());
  }

  /// Some other program has the keyboard, and the panel is closed.
  void useAnotherProgram() {
    const auto editor = desk.openWindow("Editor", {200, 200, 300, 200});
    desk.windows().activate(editor.id);
    ASSERT_TRUE(desk.until([&] { return desk.windows().active() == editor.id; }));
    ASSERT_TRUE(program.closes());
  }
  [[nodiscard]] bool microphoneMuted(bool muted) {
    return desk.until([&] { return desk.sound().sourceMuted(kSource) == muted; });
  }
  [[nodiscard]] long presses() {
    std::istringstream lines(program.program().output());
    long count = 0;
    for (std::string line; std::getline(lines, line);)
      if (line.starts_with("Pressed at ")) ++count;
    return count;
  }

  ProgramDesk program{{.windowManager = harness::WindowManager::Xfwm4,
                       .panel = harness::Panel::XfcePanel,
                       .sound = harness::SoundServerKind::PulseAudio}};
  harness::XDesk& desk = program.desk();
};

TEST_F(ShortcutTest, TurnsTheModeOnAndOffInAnyProgramAndWhileThePanelIsOpen) {
  desk.input().key(kToggle);
  EXPECT_TRUE(program.sinkMuted(true));
  EXPECT_TRUE(program.switchedOn({ProgramDesk::kMaster, ProgramDesk::kSpeaker}));
  EXPECT_TRUE(program.opens()) << "the panel stays";

  ASSERT_NO_FATAL_FAILURE(useAnotherProgram());
  desk.input().key(kToggle);
  EXPECT_TRUE(program.sinkMuted(false));
  desk.input().key(kToggle);
  EXPECT_TRUE(program.sinkMuted(true));
  EXPECT_EQ(presses(), 3);
}

TEST_F(ShortcutTest, MutesTheMicrophoneAndBack) {
  ASSERT_NO_FATAL_FAILURE(useAnotherProgram());
  desk.input().key(kMuteMic);
  EXPECT_TRUE(microphoneMuted(true));
  desk.input().key(kMuteMic);
  EXPECT_TRUE(microphoneMuted(false));
  EXPECT_TRUE(program.sinkMuted(false));
}

}  // namespace
