// Hot keys as somebody at the keyboard has them.

#include "desktop/keys/KeysDesk.h"

namespace {

using namespace platform;
using namespace place;

constexpr std::uint32_t kControlAlt = controlKey | optionKey;
constexpr std::uint16_t kXControl = 4;
constexpr std::uint16_t kXAlt = 8;
constexpr std::uint16_t kXNumLock = 16;

TEST(HotKeys, OnePressIsReportedOnceWhileAnotherProgramHasTheKeyboard) {
  KeysDesk keys;
  ASSERT_EQ(keys.registers(1, kVK_ANSI_P, kControlAlt), noErr);
  ASSERT_EQ(keys.registers(2, kVK_F1 + 0, cmdKey | shiftKey), noErr);
  EXPECT_TRUE(keys.fires(1, {kControl, kAlt, kP}));
  EXPECT_TRUE(keys.fires(2, {kShift, kSuper, kF1}));
  EXPECT_TRUE(keys.passes({kControl, kP})) << "with one modifier less";
  EXPECT_TRUE(keys.passes({kControl, kAlt, kShift, kP})) << "with one more";

  keys.unregister(1);
  EXPECT_TRUE(keys.passes({kControl, kAlt, kP}));
  EXPECT_TRUE(keys.fires(2, {kShift, kSuper, kF1}));
}

TEST(HotKeys, LocksDoNotMatter) {
  KeysDesk keys;
  ASSERT_EQ(keys.registers(1, kVK_ANSI_P, kControlAlt), noErr);
  for (const std::uint8_t lock : {kCapsLock, kNumLock, kCapsLock, kNumLock}) {
    keys.input().places({lock});
    EXPECT_TRUE(keys.fires(1, {kControl, kAlt, kP})) << "after key " << int{lock};
  }
}

TEST(HotKeys, AHeldKeyIsOnePressAndOneReleaseWhicheverIsLetGoFirst) {
  KeysDesk keys;
  ASSERT_EQ(keys.registers(1, kVK_ANSI_P, kControlAlt), noErr);
  for (const std::uint8_t place : {kControl, kAlt, kP}) keys.input().placeDown(place);
  for (int repeats = 0; repeats < 30; ++repeats) ASSERT_TRUE(keys.repeats());
  for (const std::uint8_t place : {kControl, kAlt, kP}) keys.input().placeUp(place);
  EXPECT_TRUE(keys.hears({"pressed 1", "released 1"}));
  EXPECT_TRUE(keys.fires(1, {kControl, kAlt, kP}));
}

TEST(HotKeys, AKeyThatIsDownAlreadyDoesNothingUntilItIsPressedAnew) {
  KeysDesk keys;
  for (const std::uint8_t place : {kControl, kAlt, kP}) keys.input().placeDown(place);
  ASSERT_EQ(keys.registers(1, kVK_ANSI_P, kControlAlt), noErr);
  for (int repeats = 0; repeats < 3; ++repeats) ASSERT_TRUE(keys.repeats());
  keys.input().placeUp(kP);
  EXPECT_TRUE(keys.fires(1, {kP})) << "we saw its release";
  for (const std::uint8_t place : {kControl, kAlt}) keys.input().placeUp(place);
}

TEST(HotKeys, RollingFromOneToTheNextLosesNoPress) {
  KeysDesk keys;
  ASSERT_EQ(keys.registers(1, kVK_ANSI_P, kControlAlt), noErr);
  ASSERT_EQ(keys.registers(2, kVK_ANSI_M, kControlAlt), noErr);
  for (const std::uint8_t place : {kControl, kAlt, kP, kM}) keys.input().placeDown(place);
  for (const std::uint8_t place : {kP, kM}) keys.input().placeUp(place);
  EXPECT_TRUE(keys.hears({"pressed 1", "pressed 2", "released 1", "released 2"}));
  EXPECT_TRUE(keys.fires(2, {kM}));
  EXPECT_TRUE(keys.fires(1, {kP}));
  for (const std::uint8_t place : {kControl, kAlt}) keys.input().placeUp(place);
}

TEST(HotKeys, EachKeyOfAModifierMakesItThoughTheySetDifferentBits) {
  KeysDesk keys;
  const auto result =
      keys.desk().run({"xmodmap", "-e", "remove mod4 = Super_R", "-e", "add mod3 = Super_R"});
  ASSERT_TRUE(result.succeeded()) << result.errorOutput;
  ASSERT_TRUE(keys.adapted("English", 0));
  ASSERT_EQ(keys.registers(1, kVK_ANSI_P, cmdKey), noErr);
  EXPECT_TRUE(keys.fires(1, {kSuper, kP}));
  EXPECT_TRUE(keys.fires(1, {kRightSuper, kP}));
  EXPECT_TRUE(keys.fires(1, {kSuper, kRightSuper, kP}));
}

TEST(HotKeys, WhatAnotherProgramHoldsIsRefusedAndLeftAlone) {
  KeysDesk keys;
  constexpr std::uint16_t kState = kXControl | kXAlt;
  ASSERT_TRUE(keys.other().grabs(kP, kState | kXNumLock)) << "only a part of it";
  EXPECT_EQ(keys.registers(1, kVK_ANSI_P, kControlAlt), eventHotKeyExistsErr);
  Typewriter third(keys.desk());
  EXPECT_TRUE(keys.until([&] { return third.grabs(kP, kState); })) << "nothing is left half taken";
  third.ungrab(kP, kState);
  keys.other().ungrab(kP, kState | kXNumLock);

  ASSERT_TRUE(keys.other().grabsByXInput(kP, kState | kXNumLock)) << "in the other way of two";
  EXPECT_EQ(keys.registers(1, kVK_ANSI_P, kControlAlt), eventHotKeyExistsErr);
  ASSERT_TRUE(keys.until([&] { return third.grabs(kP, kState); }));
  third.ungrab(kP, kState);
  keys.other().ungrabByXInput(kP, kState | kXNumLock);
  EXPECT_EQ(keys.registers(2, kVK_ANSI_P, kControlAlt), noErr);
  EXPECT_FALSE(third.grabs(kP, kState | kXNumLock));
  EXPECT_FALSE(third.grabsByXInput(kP, kState | kXNumLock));

  EXPECT_EQ(keys.registers(3, kVK_ANSI_P, kControlAlt), eventHotKeyExistsErr) << "our own";
  EXPECT_TRUE(keys.fires(2, {kControl, kAlt, kP}));
}

TEST(HotKeys, WhatNoKeyboardMakesOrProgramsNeedIsRefused) {
  KeysDesk keys;
  const struct {
    std::uint32_t code;
    std::uint32_t modifiers;
  } refused[] = {{kVK_ANSI_C, controlKey}, {kVK_ANSI_Z, controlKey},   {kVK_LeftArrow, controlKey},
                 {kVK_ANSI_P, 0},          {10, kControlAlt},          {300, kControlAlt},
                 {kVK_ANSI_P, 1},          {kVK_Command, kControlAlt}, {kVK_ANSI_T, controlKey},
                 {kVK_ANSI_W, controlKey}, {kVK_Tab, controlKey},      {kVK_ANSI_P, shiftKey},
                 {kVK_ANSI_1, shiftKey},   {kVK_Home, shiftKey}};
  for (const auto& [code, modifiers] : refused)
    EXPECT_EQ(keys.registers(1, code, modifiers), eventHotKeyInvalidErr) << code;
  EXPECT_EQ(keys.registers(2, kVK_ANSI_C, controlKey | shiftKey), noErr);
  EXPECT_EQ(keys.registers(3, kVK_F5, shiftKey), noErr);
}

}  // namespace
