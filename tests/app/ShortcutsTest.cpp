#include "hotkeys/HotKeysController.h"
#include "preferences/PreferencesTest.h"

namespace app {
namespace {

using preferences::Array;
using preferences::Combination;
using preferences::kControlK;
using preferences::Value;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
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
  store(shared::kuserdefault_ToggleAppShortcut, "k");
  launch();
  EXPECT_THAT(desk.log.calls("hotKeys"), IsEmpty());
  EXPECT_EQ(delegate().hotKeyToggleApp(), nullptr);
  for (const Value& list : {Value(Array{}), Value(Array{15}), Value(Array{12, "13"}),
                            Value(Array{true}), Value("12"), Value(12), Value(Array{12.0})}) {
    storeShortcut(toggleApp, "k", list);
    storeShortcut(muteMic, "m", list);
    relaunch();
    EXPECT_THAT(desk.log.calls("hotKeys"), IsEmpty());
    EXPECT_EQ(desk.settings.object(shared::kuserdefault_ToggleAppFlag), list);
  }
}

TEST_F(ShortcutsTest, ATextThatNamesNoKeyStandsForTheKeyA) {
  storeShortcut(toggleApp, 7, Array{12});
  launch();
  EXPECT_THAT(desk.keys.held(),
              ElementsAre(Combination{platform::kVK_ANSI_A, platform::controlKey}));
}

TEST_F(ShortcutsTest, OneThatIsTakenAtLaunchIsToldInTheOpenedPreferencesAndIsSilent) {
  storeShortcut(toggleApp, "k", Array{12});
  storeShortcut(muteMic, "f5", Array{13});
  desk.keys.heldByOthers.insert(kControlK);
  launch();
  EXPECT_EQ(desk.screen.alerts().size(), 1U);
  EXPECT_TRUE(sharedPreferencesWindowController()->window()->isVisible());
  // The other one works, and the refused one is there.
  EXPECT_THAT(desk.keys.held(), ElementsAre(kOptionF5));
  ASSERT_TRUE(delegate().hotKeyToggleApp());
  EXPECT_TRUE(delegate().hotKeyToggleApp()->keyDownHandler);
  desk.keys.press(kControlK);
  EXPECT_FALSE(isModeOn());
  dismissSheet();
  // The row records now, for which its hot key went.
  EXPECT_EQ(delegate().hotKeyToggleApp(), nullptr);
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

}  // namespace
}  // namespace app
