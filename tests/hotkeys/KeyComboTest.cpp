#include "hotkeys/KeyCombo.h"

#include <gtest/gtest.h>

#include <limits>

namespace hotkeys {
namespace {

using platform::Dictionary;
using platform::Value;
using Bits = ModifierFlags::Bits;

TEST(KeyComboTest, IsMadeOfAKeyOrOfItsNameAndIsDescribed) {
  const struct {
    KeyCombo combo;
    std::uint32_t keyCode;
    std::uint32_t modifiers;
    const char* text;
  } rows[] = {
      {{Key::R, {Bits::Command}}, 15, 0x100, "⌘R"},
      {{"F5", {Bits::Control | Bits::Option}}, 96, 0x1800, "⌃⌥\uF860F5"},
      {{"r", {Bits::Command | Bits::CapsLock}}, 15, 0x100, "⌘R"},
      // No key is called so.
      {{"!", {Bits::Shift}}, 0, 0x200, "⇧A"},
      {{"", {Bits::Shift}}, 0, 0x200, "⇧A"},
      {{"enter", {Bits::Shift}}, 0, 0x200, "⇧A"},
      // Any two numbers make a combination.
      {{10U, 0x300U}, 10, 0x300, "⇧⌘"},
      {{0xFFFFFFFFU, 0xFFFFFFFFU}, 0xFFFFFFFF, 0xFFFFFFFF, "⌃⌥⇧⌘"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.combo.carbonKeyCode, row.keyCode);
    EXPECT_EQ(row.combo.carbonModifiers, row.modifiers);
    EXPECT_EQ(row.combo.description(), row.text);
  }
}

TEST(KeyComboTest, ItsKeyAndItsModifiersCanBeExchanged) {
  KeyCombo combo(10, 0x300);
  EXPECT_EQ(combo.key(), std::nullopt);
  EXPECT_EQ(combo.modifiers(), (ModifierFlags{Bits::Shift | Bits::Command}));
  combo.setKey(Key::Escape);
  combo.setModifiers({Bits::Option | Bits::CapsLock});
  EXPECT_EQ(combo, KeyCombo(53, 0x800));
  combo.setKey(std::nullopt);
  EXPECT_EQ(combo.key(), Key::A);
  EXPECT_EQ(combo.modifiers(), ModifierFlags{Bits::Option});
}

TEST(KeyComboTest, ADictionaryGivesItBack) {
  EXPECT_EQ(KeyCombo(15, 0x100).dictionary(), (Dictionary{{"keyCode", 15}, {"modifiers", 256}}));
  for (const KeyCombo& combo : {KeyCombo(15, 0x100), KeyCombo(0, 0), KeyCombo(~0U, ~0U)}) {
    EXPECT_EQ(KeyCombo::fromDictionary(combo.dictionary()), combo);
  }
  EXPECT_EQ(
      KeyCombo::fromDictionary({{"keyCode", 15}, {"modifiers", 256}, {"more", "does not matter"}}),
      KeyCombo(15, 256));
}

TEST(KeyComboTest, ADictionaryWithoutTwoFittingIntegersGivesNone) {
  EXPECT_EQ(KeyCombo::fromDictionary({}), std::nullopt);
  constexpr std::int64_t kTooMuch = std::int64_t{1} << 32;
  const std::vector<Value> unfit{true, 15.0,     "15",
                                 -1,   kTooMuch, std::numeric_limits<std::int64_t>::min()};
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
