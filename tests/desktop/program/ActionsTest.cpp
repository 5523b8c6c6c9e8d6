// The program as it is started and told what to do: over the bus, at login, by its shortcuts.

#include <gmock/gmock.h>

#include <filesystem>

#include "desktop/program/ProgramDesk.h"

namespace {

namespace fs = std::filesystem;
using harness::kCalmdeckName;

constexpr const char* kPath = "/org/calmdeck/Calmdeck";

/// Over the bus with the desktops' own clients.
class ActionsTest : public testing::Test, public ProgramDesk {
 protected:
  ActionsTest()
      : ProgramDesk({.windowManager = harness::WindowManager::Xfwm4,
                     .panel = harness::Panel::XfcePanel,
                     .sound = harness::SoundServerKind::PulseAudio}) {
    desk.writeSettings({"SpeakerOff"});
  }

  /// What it tells of itself, as dbus-send prints it.
  [[nodiscard]] std::string tells(const std::string& property) {
    return desk.bus().property(kCalmdeckName, kPath, kCalmdeckName, property).value_or("nothing");
  }
};

TEST_F(ActionsTest, TheRunningProgramDoesThemAndShowsItself) {
  ASSERT_TRUE(start());
  desk.toggleMode();
  EXPECT_TRUE(says("Pressed at .*"));
  EXPECT_TRUE(sinkMuted(true));
  desk.mustRun({"dbus-send", "--print-reply", std::string("--dest=") + kCalmdeckName, kPath,
                "org.calmdeck.Calmdeck.Perform", "string:toggle-presentation-mode"});
  EXPECT_TRUE(sinkMuted(false));
  ASSERT_TRUE(close());
  desk.mustRun({"gapplication", "launch", kCalmdeckName});
  EXPECT_TRUE(opens());
  desk.perform("no-such-action");
  EXPECT_TRUE(program->complains("no action \"no-such-action\""));
  desk.perform("preferences");
  EXPECT_TRUE(desk.awaitWindow(
      [](const harness::WindowInfo& window) { return window.name == "Preferences — Calmdeck"; }));
}

TEST_F(ActionsTest, OtherProgramsSeeTheModeAndTheVersion) {
  const auto logging = desk.startCalmdeck({{"QT_LOGGING_RULES", "calmdeck.*=true"}});
  ASSERT_TRUE(desk.until([&] { return desk.bus().hasOwner(kCalmdeckName); }));
  EXPECT_THAT(logging->errorOutput(),
              testing::StartsWith("calmdeck.process: Calmdeck " CALMDECK_VERSION " "));
  EXPECT_THAT(tells("Version"), testing::EndsWith(" " CALMDECK_VERSION));
  EXPECT_THAT(tells("PresentationMode"), testing::HasSubstr("false"));
  const auto listener = desk.start({"gdbus", "monitor", "--session", "-d", kCalmdeckName});
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
  desk.bus().offer(kCalmdeckName, CALMDECK_PROGRAM);
  desk.mustRun({"dbus-update-activation-environment", "DISPLAY"});
  desk.mustRun({"gapplication", "action", kCalmdeckName, "toggle-presentation-mode"});
  EXPECT_TRUE(sinkMuted(true));
  EXPECT_TRUE(desk.until([&] { return desk.openPopover().has_value(); }));
}

TEST_F(ActionsTest, TheFirstStartMakesAnEntryThatStartsTheProgramAtLogin) {
  const fs::path entry = desk.home().config() / "autostart/org.calmdeck.Calmdeck.desktop";
  fs::remove(desk.home().config() / "calmdeck/settings.json");
  ASSERT_TRUE(start());
  EXPECT_THAT(harness::textOf(entry),
              testing::HasSubstr("\nExec=" + fs::canonical(CALMDECK_PROGRAM).string()));
  EXPECT_THAT(complaints("login"), testing::IsEmpty());
  const fs::path process = fs::path("/proc") / std::to_string(program->pid());
  EXPECT_EQ(harness::textOf(process / "comm"), "calmdeck\n");
  EXPECT_EQ(program->terminate(harness::kPatience), (harness::ProcessEnd{0, 0}));
  const auto launcher = desk.start({"gio", "launch", entry.string()});
  EXPECT_TRUE(opens());
}

/// Stored by an earlier run and pressed on the real keyboard.
class ShortcutTest : public ActionsTest {
 protected:
  void SetUp() override {
    desk.writeSettings({"SpeakerOff"}, harness::kControlAltP + std::string(R"(,
        "kuserdefault_MuteMicShortcut": "M", "kuserdefault_MuteMicFlag": [12, 13])"));
    desk.sound().addSource(kSource);
    ASSERT_TRUE(start());
  }

  [[nodiscard]] bool microphoneMuted(bool muted) {
    return desk.until([&] { return desk.sound().sourceMuted(kSource) == muted; });
  }

  static constexpr const char* kSource = "microphone";
  static constexpr const char* kToggle = "ctrl+alt+p";
  static constexpr const char* kMuteMic = "ctrl+alt+m";
};

TEST_F(ShortcutTest, EachWorksInAnyProgramAndTheModesWhileThePanelIsOpen) {
  desk.input().key(kToggle);
  EXPECT_TRUE(sinkMuted(true));
  EXPECT_TRUE(desk.until([this] { return reader.shows(kMaster, "check box", "checked"); }));
  EXPECT_TRUE(opens()) << "the panel stays";

  const auto editor = desk.openWindow("Editor", {200, 200, 300, 200});
  ASSERT_TRUE(desk.activate(editor.id));
  ASSERT_TRUE(closes());
  desk.input().key(kToggle);
  EXPECT_TRUE(sinkMuted(false));
  desk.input().key(kToggle);
  EXPECT_TRUE(sinkMuted(true));
  EXPECT_THAT(program->lines("Pressed at "), testing::SizeIs(3));

  desk.input().key(kMuteMic);
  EXPECT_TRUE(microphoneMuted(true));
  desk.input().key(kMuteMic);
  EXPECT_TRUE(microphoneMuted(false));
  EXPECT_TRUE(sinkMuted(true));
}

}  // namespace
