// Hot keys while the keyboard becomes another one.

#include "desktop/keys/KeysDesk.h"

namespace {

using namespace platform;
using namespace place;

constexpr std::uint32_t kControlAlt = controlKey | optionKey;
constexpr std::uint16_t kXControlAlt = 4 | 8;

TEST(KeyboardChange, AHotKeyFollowsItsCharacterToAnotherLayout) {
  KeysDesk keys;
  ASSERT_EQ(keys.registers(1, kVK_ANSI_Z, kControlAlt), noErr);
  ASSERT_EQ(keys.registers(2, kVK_ANSI_A, kControlAlt), noErr);
  ASSERT_EQ(keys.registers(3, kVK_ANSI_Q, kControlAlt), noErr);
  EXPECT_TRUE(keys.fires(1, {kControl, kAlt, kZ}));

  keys.setLayout({"de"});
  ASSERT_TRUE(keys.adapted("German", 1));
  EXPECT_TRUE(keys.fires(1, {kControl, kAlt, kY}));
  EXPECT_TRUE(keys.passes({kControl, kAlt, kZ}));

  keys.setLayout({"fr"});
  ASSERT_TRUE(keys.adapted("French", 3));
  EXPECT_TRUE(keys.fires(2, {kControl, kAlt, kQ})) << "two that trade their places";
  EXPECT_TRUE(keys.fires(3, {kControl, kAlt, kA}));
}

TEST(KeyboardChange, TheSecondLayoutIsFollowedWhenTheUserSwitchesToIt) {
  KeysDesk keys;
  keys.setLayout({"-layout", "us,de,ru", "-option", "grp:menu_toggle"});
  ASSERT_EQ(keys.registers(1, kVK_ANSI_Z, kControlAlt), noErr);
  EXPECT_TRUE(keys.fires(1, {kControl, kAlt, kZ}));
  keys.input().places({kMenu});
  ASSERT_TRUE(keys.adapted("German", 1));
  EXPECT_TRUE(keys.fires(1, {kControl, kAlt, kY})) << "German";
  keys.input().places({kMenu});
  ASSERT_TRUE(keys.adapted("Russian", 1));
  EXPECT_TRUE(keys.fires(1, {kControl, kAlt, kZ})) << "Russian";
}

TEST(KeyboardChange, AKeyThatIsMadeAnotherIsFollowed) {
  KeysDesk keys;
  ASSERT_EQ(keys.registers(1, kVK_ANSI_P, kControlAlt), noErr);
  EXPECT_TRUE(
      keys.desk().run({"xmodmap", "-e", "keycode 33 = o O", "-e", "keycode 96 = p P"}).succeeded());
  ASSERT_TRUE(keys.adapted("English", 1));
  EXPECT_TRUE(keys.fires(1, {kControl, kAlt, 96}));
  EXPECT_TRUE(keys.passes({kControl, kAlt, kP}));
}

TEST(KeyboardChange, WhatAnotherProgramHoldsOnTheNewLayoutIsSaidAndComesBackWithTheOld) {
  KeysDesk keys;
  ASSERT_EQ(keys.registers(1, kVK_ANSI_Z, kControlAlt), noErr);
  ASSERT_EQ(keys.registers(2, kVK_ANSI_P, kControlAlt), noErr);
  ASSERT_TRUE(keys.other().grabs(kY, kXControlAlt));
  keys.setLayout({"de"});
  ASSERT_TRUE(keys.adapted("German", 1));
  EXPECT_NE(keys.program().log().find("Control+Alt+z: another program has it on the layout German"),
            std::string::npos);
  EXPECT_TRUE(keys.fires(2, {kControl, kAlt, kP})) << "the others stay";
  keys.setLayout({"us"});
  ASSERT_TRUE(keys.adapted("English", 1));
  EXPECT_TRUE(keys.fires(1, {kControl, kAlt, kZ}));
}

TEST(KeyboardChange, AModifierThatGoesTakesItsHotKeysAlongUntilItReturns) {
  KeysDesk keys;
  ASSERT_EQ(keys.registers(1, kVK_ANSI_P, cmdKey), noErr);
  keys.setLayout({"-layout", "us", "-option", "altwin:meta_win"});
  ASSERT_TRUE(keys.adapted("English", 1));
  EXPECT_NE(keys.program().log().find("Super+p: not on the layout English"), std::string::npos);
  EXPECT_TRUE(keys.passes({kP}));
  keys.setLayout({"-layout", "us", "-option", ""});
  ASSERT_TRUE(keys.adapted("English", 1));
  EXPECT_TRUE(keys.fires(1, {kSuper, kP}));
}

}  // namespace
