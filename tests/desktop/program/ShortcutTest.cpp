// The shortcuts, stored by an earlier run and pressed on the real keyboard.

#include <sstream>

#include "desktop/program/ProgramDesk.h"

namespace {

using namespace std::chrono_literals;

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
  for (const char* lock : {"Caps_Lock", "Num_Lock"}) desk.input().key(lock);
  desk.input().key(kToggle);
  EXPECT_TRUE(program.sinkMuted(true));
  EXPECT_EQ(presses(), 3);
}

TEST_F(ShortcutTest, AHeldKeyTurnsTheModeOnOnce) {
  ASSERT_NO_FATAL_FAILURE(useAnotherProgram());
  for (const char* key : {"ctrl", "alt", "p"}) desk.input().keyDown(key);
  EXPECT_TRUE(program.sinkMuted(true));
  // Long enough for many repeats.
  EXPECT_FALSE(desk.until([&] { return presses() > 1; }, 3s));
  for (const char* key : {"p", "alt", "ctrl"}) desk.input().keyUp(key);
  desk.input().key(kToggle);
  EXPECT_TRUE(program.sinkMuted(false));
  EXPECT_EQ(presses(), 2);
}

TEST_F(ShortcutTest, FollowsTheUsersLayout) {
  ASSERT_NO_FATAL_FAILURE(useAnotherProgram());
  constexpr std::uint8_t kControl = 37, kAlt = 64, kRightOfO = 33, kRightOfL = 47;
  desk.input().places({kControl, kAlt, kRightOfO});
  EXPECT_TRUE(program.sinkMuted(true));
  ASSERT_TRUE(desk.run({"setxkbmap", "fr"}).succeeded());
  // The program hears of the layout when everybody does. To press too early does nothing.
  EXPECT_TRUE(desk.until([&] {
    desk.input().places({kControl, kAlt, kRightOfL});
    return presses() > 1;
  })) << "the place of the French m";
  EXPECT_TRUE(program.sinkMuted(true)) << "and not that of p";
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
