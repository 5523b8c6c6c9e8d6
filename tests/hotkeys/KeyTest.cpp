#include "hotkeys/Key.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "hotkeys/KeyCombo.h"
#include "hotkeys/ModifierFlags.h"

namespace hotkeys {
namespace {

/// The code, the text and the names of each key, in order. The numbers are the platform's own.
// clang-format off
const std::string kPublished =
    "0 A a | 11 B b | 8 C c | 2 D d | 14 E e | 3 F f | 5 G g | 4 H h | 34 I i | 38 J j | "
    "40 K k | 37 L l | 46 M m | 45 N n | 31 O o | 35 P p | 12 Q q | 15 R r | 1 S s | 17 T t | "
    "32 U u | 9 V v | 13 W w | 7 X x | 16 Y y | 6 Z z | 29 0 zero 0 | 18 1 one 1 | 19 2 two 2 | "
    "20 3 three 3 | 21 4 four 4 | 23 5 five 5 | 22 6 six 6 | 26 7 seven 7 | 28 8 eight 8 | "
    "25 9 nine 9 | 47 . period . | 39 \" quote \" | 30 ] rightbracket ] | 41 ; semicolon ; | "
    "44 / slash / | 42 \\ backslash \\ | 43 , comma , | 24 = equal = | "
    "50 ` grave ` \u02CB \uFF40 | 33 [ leftbracket [ | 27 - minus - | 49 ␣ space ␣ | "
    "48 ⇥ tab ⇥ | 36 ↩\uFE0E return ↩\uFE0E ⏎ ⮐ | 55 ⌘ command ⌘ \uF8FF | 54 ⌘ rightcommand | "
    "58 ⌥ option ⌥ | 61 ⌥ rightoption | 59 ⌃ control ⌃ | 62 ⌃ rightcontrol | 56 ⇧ shift ⇧ | "
    "60 ⇧ rightshift | 63 fn function fn | 57 ⇪ capslock ⇪ | 116 ⇞ pageup ⇞ | 121 ⇟ pagedown ⇟ | "
    "115 ↖ home ↖ | 119 ↘ end ↘ | 126 ↑ uparrow ↑ | 124 → rightarrow → | 125 ↓ downarrow ↓ | "
    "123 ← leftarrow ← | 122 \uF860F1 f1 \uF860f1 | 120 \uF860F2 f2 \uF860f2 | "
    "99 \uF860F3 f3 \uF860f3 | 118 \uF860F4 f4 \uF860f4 | 96 \uF860F5 f5 \uF860f5 | "
    "97 \uF860F6 f6 \uF860f6 | 98 \uF860F7 f7 \uF860f7 | 100 \uF860F8 f8 \uF860f8 | "
    "101 \uF860F9 f9 \uF860f9 | 109 \uF861F10 f10 \uF861f10 | 103 \uF861F11 f11 \uF861f11 | "
    "111 \uF861F12 f12 \uF861f12 | 105 \uF861F13 f13 \uF861f13 | 107 \uF861F14 f14 \uF861f14 | "
    "113 \uF861F15 f15 \uF861f15 | 106 \uF861F16 f16 \uF861f16 | 64 \uF861F17 f17 \uF861f17 | "
    "79 \uF861F18 f18 \uF861f18 | 80 \uF861F19 f19 \uF861f19 | 90 \uF861F20 f20 \uF861f20 | "
    "82 0 keypad0 | 83 1 keypad1 | 84 2 keypad2 | 85 3 keypad3 | 86 4 keypad4 | 87 5 keypad5 | "
    "88 6 keypad6 | 89 7 keypad7 | 91 8 keypad8 | 92 9 keypad9 | 71 ⌧ keypadclear ⌧ | "
    "65 . keypaddecimal | 75 / keypaddivide | 76 ↩\uFE0E keypadenter | 81 = keypadequals | "
    "78 - keypadminus | 67 \U0001D5D1 keypadmultiply | 69 + keypadplus | 53 ⎋ escape ⎋ | "
    "51 ⌫ delete ⌫ | 117 ⌦ forwarddelete ⌦ | 114 ?\u20DD help ?\u20DD | 72 🔊 volumeup 🔊 | "
    "73 🔉 volumedown 🔉 | 74 🔇 mute 🔇";
// clang-format on

std::string inCapitals(std::string text) {
  std::ranges::transform(text, text.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  return text;
}

TEST(KeyTest, EveryKeyHasItsCodeItsTextAndItsNames) {
  std::istringstream published(kPublished);
  for (std::size_t index = 0; index < kKeyCount; ++index) {
    const Key key{static_cast<std::uint8_t>(index)};
    std::uint32_t code = 0;
    std::string display;
    ASSERT_TRUE(published >> code >> display) << index;
    EXPECT_EQ(carbonKeyCode(key), code) << display;
    EXPECT_EQ(keyFromCarbonKeyCode(code), key) << display;
    EXPECT_EQ(description(key), display);
    for (std::string name; published >> name && name != "|";) {
      EXPECT_EQ(keyFromName(name), key) << name;
      EXPECT_EQ(keyFromName(inCapitals(name)), key) << name;
    }
  }
  EXPECT_EQ(keyFromName(" "), Key::Space);
  EXPECT_EQ(keyFromName("\t"), Key::Tab);
  EXPECT_EQ(keyFromName("\r"), Key::Return);
}

TEST(KeyTest, OtherTextsAndCodesAreOfNoKey) {
  for (const char* text : {"", "plus", "+", "\U0001D5D1", "keypad", "enter", "!", "ä", "↩", "a ",
                           "f21", "\uF861F1", "\uF860F10"}) {
    EXPECT_EQ(keyFromName(text), std::nullopt) << text;
  }
  EXPECT_EQ(keyFromName(std::string_view("\0", 1)), std::nullopt);
  for (const std::uint32_t code : {10U, 52U, 112U, 127U, 0xFFFFU, 0xFFFFFFFFU}) {
    EXPECT_EQ(keyFromCarbonKeyCode(code), std::nullopt) << code;
  }
}

// --- Combinations ---

using Bits = ModifierFlags::Bits;
using platform::Dictionary;
using platform::Value;

TEST(KeyComboTest, ItsKeyAndItsModifiersCanBeExchanged) {
  KeyCombo combo(10, 0x300);
  EXPECT_EQ(combo.key(), std::nullopt);
  EXPECT_EQ(combo.description(), "⇧⌘");
  combo.setKey(Key::Escape);
  combo.setModifiers({Bits::Option | Bits::CapsLock});
  EXPECT_EQ(combo, KeyCombo(53, 0x800));
  combo.setKey(std::nullopt);
  EXPECT_EQ(combo, KeyCombo(0, 0x800));
}

TEST(KeyComboTest, ADictionaryGivesItBackIfItHasTwoFittingIntegers) {
  EXPECT_EQ(KeyCombo(15, 0x100).dictionary(), (Dictionary{{"keyCode", 15}, {"modifiers", 256}}));
  for (const KeyCombo& combo : {KeyCombo(15, 0x100), KeyCombo(~0U, ~0U)}) {
    EXPECT_EQ(KeyCombo::fromDictionary(combo.dictionary()), combo);
  }
  const std::vector<Value> unfit{true, 15.0, "15", -1, std::int64_t{1} << 32};
  for (const char* entry : {"keyCode", "modifiers"}) {
    Dictionary dictionary = KeyCombo(15, 0x100).dictionary();
    dictionary.erase(entry);
    EXPECT_EQ(KeyCombo::fromDictionary(dictionary), std::nullopt) << entry;
    for (const Value& value : unfit) {
      dictionary.insert_or_assign(entry, value);
      EXPECT_EQ(KeyCombo::fromDictionary(dictionary), std::nullopt) << entry;
    }
  }
}

}  // namespace
}  // namespace hotkeys
