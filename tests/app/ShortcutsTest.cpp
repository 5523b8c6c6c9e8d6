#include <gmock/gmock.h>

#include "platform/carbon/KeyCodes.h"
#include "preferences/PreferencesTest.h"
#include "shared/SettingsKeys.h"
#include "support/ApplicationTest.h"

namespace app {
namespace {

using preferences::Array;
using preferences::Combination;
using preferences::Value;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

constexpr Combination kOptionF5{platform::kVK_F5, platform::optionKey};

class ShortcutsTest : public preferences::PreferencesTest {
 protected:
  [[nodiscard]] bool isModeOn() const { return desk.tray.image() == "logo-active-small"; }
};

TEST_F(ShortcutsTest, BothShortcutsComeFromTheSettingsAtEachLaunch) {
  storeShortcut(toggleApp, "R", Array{14, 11});
  storeShortcut(muteMic, "f5", Array{13, 13, 99});
  launch();
  const Combination shiftCommandR{platform::kVK_ANSI_R, platform::shiftKey | platform::cmdKey};
  EXPECT_THAT(desk.keys.held(), UnorderedElementsAre(shiftCommandR, kOptionF5));
  EXPECT_EQ(delegate().hotKeyToggleApp()->keyCombo().description(), "⇧⌘R");
  EXPECT_EQ(delegate().hotKeyMuteMic()->keyCombo().description(), "⌥\uF860F5");
  EXPECT_EQ(preferences::shortcutState().currentShortcutKey, "f5");
  relaunch();
  EXPECT_EQ(desk.log.calls("hotKeys").size(), 2U);
  EXPECT_EQ(desk.keys.held().size(), 2U);
}

TEST_F(ShortcutsTest, WithoutUsableModifiersNothingIsRegistered) {
  for (const Value& list : {Value(Array{}), Value(Array{15}), Value(Array{12, "13"}),
                            Value(Array{true}), Value("12"), Value(Array{12.0})}) {
    storeShortcut(toggleApp, "k", list);
    storeShortcut(muteMic, "m", list);
    relaunch();
    EXPECT_THAT(desk.log.calls("hotKeys"), IsEmpty());
    EXPECT_EQ(desk.settings.object(shared::kuserdefault_ToggleAppFlag), list);
  }
}

TEST_F(ShortcutsTest, KeysThatTheUserBindsHimselfDoAndPrintTheSame) {
  launch();
  EXPECT_TRUE(desk.userSession.perform("toggle-presentation-mode"));
  EXPECT_TRUE(isModeOn());
  EXPECT_THAT(desk.output.lines, ElementsAre(StartsWith("Pressed at ")));
  EXPECT_TRUE(desk.userSession.perform("toggle-presentation-mode"));
  EXPECT_FALSE(isModeOn());

  EXPECT_TRUE(desk.userSession.perform("preferences"));
  EXPECT_TRUE(sharedPreferencesWindowController()->window()->isVisible());
  EXPECT_FALSE(desk.userSession.perform("togglePopover:"));
}

TEST_F(ShortcutsTest, ShortcutsAreRegisteredAndDroppedByName) {
  launch();
  preferences::shortcutState().currentShortcutModifiers = {hotkeys::ModifierFlags::Bits::Control};
  const auto perform = [this](const char* name, const char* key) {
    preferences::shortcutState().currentShortcutKey = key;
    delegate().performSelector(name);
  };
  perform("register_ToggleApp:", "k");
  perform("register_MuteMic:", "j");
  EXPECT_EQ(desk.keys.held().size(), 2U);
  perform("unregister_MuteMic:", "");
  // The new one is there before the old one goes.
  desk.log.clear();
  perform("register_ToggleApp:", "j");
  EXPECT_THAT(desk.log.calls(),
              ElementsAre("hotKeys.register 38 4096", "hotKeys.unregister 40 4096"));
  perform("unregister_ToggleApp:", "");
  EXPECT_THAT(desk.keys.held(), IsEmpty());
}

class MicrophoneActionTest : public tests::ApplicationTest {
 protected:
  MicrophoneActionTest() {
    desk.scripts.addApplication("System Events");
    store(shared::kuserdefault_MuteMicShortcut, "m");
    store(shared::kuserdefault_MuteMicFlag, Array{14, 11});
  }
  void setLevel(Value level) {
    desk.scripts.volume.insert_or_assign("input volume", std::move(level));
  }
  [[nodiscard]] Value level() const { return desk.scripts.volume.at("input volume"); }
  /// The user presses the shortcut; logs begin anew.
  void press() {
    desk.output.lines.clear();
    desk.log.clear();
    desk.keys.press({platform::kVK_ANSI_M, platform::shiftKey | platform::cmdKey});
  }
  [[nodiscard]] std::vector<std::string> deeds() const { return desk.log.calls("automation"); }
  static auto errorWithNumber(const std::string& number) {
    return AllOf(StartsWith("{\n"),
                 HasSubstr("\n    NSAppleScriptErrorNumber = \"" + number + "\";\n"));
  }
};

TEST_F(MicrophoneActionTest, APressMutesAndTheNextGivesTheLevelBack) {
  setLevel(35);
  launch();
  press();
  EXPECT_THAT(
      desk.log.entries(),
      ElementsAre("print Pressed at 1970-01-01 00:00:00 +0000", "print mic value is", "print 35",
                  "automation.setInputVolume 0", "automation.displayNotification Mic muted"));
  press();
  EXPECT_THAT(desk.log.entries(), ElementsAre(StartsWith("print Pressed at "), "print mic value is",
                                              "print 0", "automation.setInputVolume 35",
                                              "automation.displayNotification Mic unmuted"));
  EXPECT_EQ(level(), Value(35));
  const std::vector<std::string> byShortcut = desk.log.entries();
  setLevel(0);
  desk.log.clear();
  EXPECT_TRUE(desk.userSession.perform("toggle-microphone"));
  EXPECT_EQ(desk.log.entries(), byShortcut) << "a key of the user's own";
}

TEST_F(MicrophoneActionTest, WhoeverSilencedItTheLastLevelThatWasSeenComesBack) {
  setLevel(0);
  launch();
  press();
  EXPECT_EQ(level(), Value(100));  // none was seen yet
  setLevel(60);
  press();
  setLevel(80);  // the user turns it up
  press();
  EXPECT_EQ(level(), Value(0));
  press();
  EXPECT_EQ(level(), Value(80));
  setLevel(0);  // and down by hand
  press();
  EXPECT_EQ(level(), Value(80));
  setLevel("00");
  press();
  EXPECT_EQ(level(), Value(0)) << "that was no silence";
}

TEST_F(MicrophoneActionTest, WithoutALevelNothingIsDone) {
  launch();
  // No microphone, or a record that has no text.
  for (const auto& volume : {platform::Dictionary{{"output volume", 20}},
                             platform::Dictionary{{"input volume", platform::Dictionary{}}}}) {
    desk.scripts.volume = volume;
    press();
    EXPECT_THAT(desk.output.lines, ElementsAre(StartsWith("Pressed at ")));
    EXPECT_THAT(deeds(), IsEmpty());
  }
  desk.scripts.failure = {-10000, "The sound is gone."};
  press();
  EXPECT_THAT(desk.output.lines, ElementsAre(StartsWith("Pressed at "), errorWithNumber("-10000")));
  desk.desktop.automation = nullptr;
  press();
  EXPECT_THAT(desk.output.lines, ElementsAre(StartsWith("Pressed at "), errorWithNumber("-1743")));
  EXPECT_THAT(deeds(), IsEmpty());
}

TEST_F(MicrophoneActionTest, ALevelThatCannotBeSetIsPrintedAndWasStillSeen) {
  setLevel(35);
  desk.scripts.setInputVolumeFailure = {-10000, "The microphone does not listen."};
  launch();
  press();
  EXPECT_THAT(desk.output.lines, ElementsAre(StartsWith("Pressed at "), "mic value is", "35",
                                             errorWithNumber("-10000")));
  EXPECT_THAT(deeds(), ElementsAre("automation.setInputVolume 0"));
  desk.scripts.setInputVolumeFailure.reset();
  setLevel(0);
  press();
  EXPECT_EQ(level(), Value(35));
}

}  // namespace
}  // namespace app
