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
  EXPECT_TRUE(keys.passes({kP})) << "no bare key was taken instead";
  EXPECT_EQ(keys.registers(2, kVK_ANSI_M, cmdKey), eventHotKeyInvalidErr);
  keys.setLayout({"-layout", "us", "-option", ""});
  ASSERT_TRUE(keys.adapted("English", 1));
  EXPECT_TRUE(keys.fires(1, {kSuper, kP}));
}

// --- What a window of ours is told of a key that is pressed in it ---

struct Press {
  std::vector<std::uint8_t> places;
  /// Code, flags and character of the event; the last two are hexadecimal.
  const char* event;
};

struct Layout {
  std::vector<std::string> arguments;
  const char* name;
  std::vector<Press> presses;
};

TEST(KeyTranslator, TellsKeysAsThePlatformDoes) {
  KeysDesk keys;
  const Layout layouts[] = {
      {{"us"},
       "English",
       {{{kP}, "35 0 70"},
        {{kControl, kAlt, kP}, "35 c0000 70"},
        {{kShift, kSuper, kP}, "35 120000 50"},
        {{kShift, k1}, "18 20000 31"},
        {{kAlt, kMinus}, "27 80000 2d"},
        {{kControl, kUp}, "126 a40000 -"},
        {{kAlt, kF1}, "122 880000 f704"},
        {{kReturn}, "36 0 d"},
        {{kControl, kTab}, "48 40000 9"},
        {{9}, "53 0 -"},
        {{22}, "51 0 -"},
        {{kDelete}, "117 800000 -"},
        {{kControl, kKeypad5}, "87 240000 -"},
        {{kKeypadEnter}, "76 200000 -"},
        {{kControl, kMenu}, "65535 40000 -"}}},
      {{"de"},
       "German",
       {{{kZ}, "16 0 79"},
        {{21}, "65535 0 -"},
        {{kQuote}, "65535 0 -"},
        {{kControl, kRightAlt, kP}, "35 40000 -"},
        {{kShift, kRightAlt, kP}, "35 20000 -"}}},
      {{"fr"}, "French", {{{kQ}, "0 0 61"}, {{k1}, "18 0 31"}, {{kShift, k1}, "18 20000 31"}}},
      // What is Latin is its own.
      {{"ru"},
       "Russian",
       {{{kControl, kA}, "0 40000 61"}, {{kShift, kA}, "0 20000 41"}, {{61}, "47 0 2e"}}},
      {{"-layout", "fr,ru", "-option", "grp:menu_toggle"}, "French", {{{kA}, "12 0 71"}}},
  };
  for (const Layout& layout : layouts) {
    keys.setLayout(layout.arguments);
    ASSERT_TRUE(keys.adapted(layout.name, 0));
    for (const Press& press : layout.presses)
      EXPECT_EQ(keys.typed(press.places), press.event) << layout.name;
  }
  keys.input().places({kMenu});
  EXPECT_EQ(keys.typed({kControl, kA}), "12 40000 71") << "Russian beside French";
  keys.input().places({kMenu, kCapsLock, kNumLock});
  EXPECT_EQ(keys.typed({kA}), "12 10000 71") << "Caps Lock is no Shift, and Num Lock nothing";
}

}  // namespace
