#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>

#include "desktop/program/ProgramDesk.h"

using harness::DeskOptions;
using harness::ProcessEnd;
using harness::WindowManager;

namespace {

namespace fs = std::filesystem;

TEST(LaunchTest, TheFirstMakesAnEntryThatStartsTheProgramAtLogin) {
  ProgramDesk program{DeskOptions{.windowManager = WindowManager::Openbox}};
  const harness::PrivateHome& home = program.desk().home();
  const fs::path entry = home.config() / "autostart/org.calmdeck.Calmdeck.desktop";
  ASSERT_TRUE(program.start());
  EXPECT_THAT(harness::textOf(entry),
              testing::HasSubstr("\nExec=" + fs::canonical(CALMDECK_PROGRAM).string()));
  EXPECT_THAT(program.complaints("login"), testing::IsEmpty());
  const fs::path process = fs::path("/proc") / std::to_string(program.program().pid());
  EXPECT_EQ(harness::textOf(process / "comm"), "calmdeck\n");
  program.program().signal(SIGTERM);
  EXPECT_EQ(program.program().waitForExit(), (ProcessEnd{0, 0}));
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
    desk.writeSettings({"SpeakerOff"}, harness::kControlAltP + std::string(R"(,
        "kuserdefault_MuteMicShortcut": "M", "kuserdefault_MuteMicFlag": [12, 13])"));
    desk.sound().addSource(kSource);
    ASSERT_TRUE(program.start());
  }

  [[nodiscard]] bool microphoneMuted(bool muted) {
    return desk.until([&] { return desk.sound().sourceMuted(kSource) == muted; });
  }
  ProgramDesk program{{.windowManager = harness::WindowManager::Xfwm4,
                       .panel = harness::Panel::XfcePanel,
                       .sound = harness::SoundServerKind::PulseAudio}};
  harness::XDesk& desk = program.desk();
};

TEST_F(ShortcutTest, EachWorksInAnyProgramAndTheModesWhileThePanelIsOpen) {
  desk.input().key(kToggle);
  EXPECT_TRUE(program.sinkMuted(true));
  EXPECT_TRUE(program.switchedOn({ProgramDesk::kMaster, ProgramDesk::kSpeaker}));
  EXPECT_TRUE(program.opens()) << "the panel stays";

  const auto editor = desk.openWindow("Editor", {200, 200, 300, 200});
  desk.windows().activate(editor.id);
  ASSERT_TRUE(program.closes());
  desk.input().key(kToggle);
  EXPECT_TRUE(program.sinkMuted(false));
  desk.input().key(kToggle);
  EXPECT_TRUE(program.sinkMuted(true));
  EXPECT_THAT(program.program().lines("Pressed at "), testing::SizeIs(3));

  desk.input().key(kMuteMic);
  EXPECT_TRUE(microphoneMuted(true));
  desk.input().key(kMuteMic);
  EXPECT_TRUE(microphoneMuted(false));
  EXPECT_TRUE(program.sinkMuted(true));
}

}  // namespace
