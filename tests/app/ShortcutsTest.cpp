#include <gmock/gmock.h>

#include "hotkeys/HotKeysController.h"
#include "platform/carbon/KeyCodes.h"
#include "preferences/ShortcutState.h"
#include "settings/SettingsKeys.h"
#include "support/ApplicationTest.h"

namespace app {
namespace {

using namespace std::chrono_literals;
using platform::Array;
using platform::Value;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using Combination = simulated::SimulatedHotKeys::Combination;
using Lines = std::vector<std::string>;

constexpr Combination kControlK{platform::kVK_ANSI_K, platform::controlKey};
constexpr Combination kOptionF5{platform::kVK_F5, platform::optionKey};

class ShortcutsTest : public tests::ApplicationTest {
 protected:
  void store(std::string_view key, Value value) {
    desk.settings.values.insert_or_assign(std::string(key), std::move(value));
  }
  void storeToggleApp(Value text, Value list) {
    store(settings::kuserdefault_ToggleAppShortcut, std::move(text));
    store(settings::kuserdefault_ToggleAppFlag, std::move(list));
  }
  void storeMuteMic(Value text, Value list) {
    store(settings::kuserdefault_MuteMicShortcut, std::move(text));
    store(settings::kuserdefault_MuteMicFlag, std::move(list));
  }
  [[nodiscard]] bool isModeOn() const { return desk.tray.image() == "logo-active-small"; }
};

TEST_F(ShortcutsTest, AStoredShortcutTurnsTheModeOnAndOffAndPrintsWhen) {
  storeToggleApp("k", Array{12});
  desk.loop.setWallClockStart(platform::WallTime(1794858182s));
  launchOnly();
  EXPECT_THAT(desk.keys.held(), ElementsAre(kControlK));
  // The panel has not been opened yet.
  desk.keys.press(kControlK);
  desk.keys.release(kControlK);
  EXPECT_TRUE(isModeOn());
  EXPECT_FALSE(delegate().popover()->isShown());
  desk.loop.advance(2s);
  desk.keys.press(kControlK);
  EXPECT_FALSE(isModeOn());
  EXPECT_EQ(desk.output.lines, (Lines{"Pressed at 2026-11-16 19:43:02 +0000",
                                      "Pressed at 2026-11-16 19:43:04 +0000"}));
}

TEST_F(ShortcutsTest, BothShortcutsComeFromTheSettingsAtEachLaunch) {
  storeToggleApp("R", Array{14, 11});
  storeMuteMic("f5", Array{13, 13, 99});
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
  store(settings::kuserdefault_ToggleAppShortcut, "k");
  launch();
  EXPECT_THAT(desk.log.calls("hotKeys"), IsEmpty());
  EXPECT_EQ(delegate().hotKeyToggleApp(), nullptr);
  for (const Value& list : {Value(Array{}), Value(Array{15}), Value(Array{12, "13"}),
                            Value(Array{true}), Value("12"), Value(12), Value(Array{12.0})}) {
    storeToggleApp("k", list);
    storeMuteMic("m", list);
    relaunch();
    EXPECT_THAT(desk.log.calls("hotKeys"), IsEmpty());
    EXPECT_EQ(desk.settings.object(settings::kuserdefault_ToggleAppFlag), list);
  }
}

TEST_F(ShortcutsTest, ATextThatNamesNoKeyStandsForTheKeyA) {
  for (const Value& text : {Value("!"), Value(""), Value(7)}) {
    storeToggleApp(text, Array{12});
    relaunch();
    EXPECT_THAT(desk.keys.held(),
                ElementsAre(Combination{platform::kVK_ANSI_A, platform::controlKey}));
  }
}

TEST_F(ShortcutsTest, ShortcutsNeedNoStatusButton) {
  storeToggleApp("k", Array{12});
  desk.tray.hasButtons = false;
  launch();
  desk.keys.press(kControlK);
  EXPECT_TRUE(isModeOn() || delegate().statusbutton() == nullptr);
  EXPECT_EQ(desk.output.lines.size(), 1U);
}

TEST_F(ShortcutsTest, OneThatIsTakenAtLaunchIsToldInTheOpenedPreferencesAndStaysStored) {
  storeToggleApp("k", Array{12});
  storeMuteMic("f5", Array{13});
  desk.keys.heldByOthers.insert(kControlK);
  launch();
  ASSERT_EQ(desk.screen.alerts().size(), 1U);
  EXPECT_EQ(desk.screen.alerts().front().message, "Please use a different key combination.");
  EXPECT_TRUE(desk.screen.alerts().front().isSheet);
  EXPECT_TRUE(sharedPreferencesWindowController()->window()->isVisible());
  EXPECT_EQ(desk.settings.object(settings::kuserdefault_ToggleAppShortcut), Value("k"));
  // The other one works, and the refused one is there and silent.
  EXPECT_THAT(desk.keys.held(), ElementsAre(kOptionF5));
  ASSERT_TRUE(delegate().hotKeyToggleApp());
  EXPECT_TRUE(delegate().hotKeyToggleApp()->keyDownHandler);
  desk.keys.press(kControlK);
  EXPECT_FALSE(isModeOn());
  desk.screen.answerAlert(0);
  desk.loop.settle();
  EXPECT_THAT(desk.screen.alerts(), IsEmpty());
  // The row records now, for which its hot key went.
  EXPECT_TRUE(preferences::shortcutState().isRecordingShortcut);
  EXPECT_EQ(delegate().hotKeyToggleApp(), nullptr);
}

TEST_F(ShortcutsTest, BothTakenAtLaunchEndInOneRecordingRow) {
  storeToggleApp("k", Array{12});
  storeMuteMic("f5", Array{13});
  desk.keys.heldByOthers = {kControlK, kOptionF5};
  launch();
  while (!desk.screen.alerts().empty()) {
    desk.screen.answerAlert(0);
    desk.loop.settle();
  }
  EXPECT_TRUE(preferences::shortcutState().isRecordingShortcut);
  EXPECT_FALSE(preferences::shortcutState().recordingMuteMic);
  EXPECT_THAT(desk.log.calls("hotKeys"), ::testing::SizeIs(2));
}

TEST_F(ShortcutsTest, ShortcutsAreRegisteredAndDroppedByName) {
  launch();
  auto& state = preferences::shortcutState();
  state.currentShortcutModifiers = {hotkeys::ModifierFlags::Bits::Control};
  state.currentShortcutKey = "k";
  delegate().performSelector("register_ToggleApp:");
  state.currentShortcutKey = "J";
  delegate().performSelector("register_MuteMic:");
  EXPECT_EQ(desk.keys.held().size(), 2U);
  delegate().performSelector("unregister_MuteMic:");
  delegate().performSelector("unregister_MuteMic:");
  EXPECT_THAT(desk.keys.held(), ElementsAre(kControlK));

  // The new one is there before the old one goes.
  desk.log.clear();
  delegate().performSelector("register_ToggleApp:");
  EXPECT_THAT(desk.log.calls(),
              ElementsAre("hotKeys.register 38 4096", "hotKeys.unregister 40 4096"));
  delegate().performSelector("unregister_ToggleApp:");
  EXPECT_THAT(desk.keys.held(), IsEmpty());
  EXPECT_TRUE(hotkeys::HotKeysController::boxesById().empty());
}

TEST_F(ShortcutsTest, APressWhileTheMainThreadSleepsIsKept) {
  storeToggleApp("k", Array{12});
  store(settings::kUserdefaultsToggleDesktopIcons, true);
  store(settings::kUserdefaultsToggleWallpaper, true);
  store(settings::kUserdefaultsSelectedWallpaper, "/pictures/chosen");
  launch();
  desk.keys.press(kControlK);
  EXPECT_TRUE(isModeOn());
  desk.loop.at(500ms, [this] {
    desk.keys.press(kControlK);
    EXPECT_TRUE(isModeOn());
  });
  desk.loop.settle();
  EXPECT_EQ(desk.loop.sleeps().size(), 1U);
  EXPECT_FALSE(isModeOn());
  EXPECT_EQ(desk.output.lines.size(), 2U);
}

TEST_F(ShortcutsTest, QuittingLeavesTheModesEffectsAndTheCombinationsGoWithTheProgram) {
  storeToggleApp("k", Array{12});
  store(settings::kUserdefaultsToggleSpeakerOff, true);
  desk.audio.addOutputDevice(42);
  desk.audio.setDefaultOutputDevice(42);
  launch();
  desk.keys.press(kControlK);
  desk.tray.rightClick();
  desk.log.clear();
  desk.tray.choose("Quit");
  EXPECT_TRUE(desk.loop.isTerminated());
  EXPECT_EQ(desk.log.calls(), Lines{});
  EXPECT_EQ(desk.audio.isMuted(42), std::optional(true));
}

}  // namespace
}  // namespace app
