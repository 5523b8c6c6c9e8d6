#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "hotkeys/KeyCombo.h"
#include "hotkeys/ModifierFlags.h"

namespace hotkeys {
namespace {

using Bits = ModifierFlags::Bits;
using platform::Dictionary;
using platform::Value;

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

TEST(ModifierFlagsTest, EveryConversionKeepsTheFourModifiersAndDropsTheRest) {
  for (std::uint32_t set = 0; set < 16; ++set) {
    ModifierFlags flags;
    if ((set & 1) != 0) flags.bits |= Bits::Control;
    if ((set & 2) != 0) flags.bits |= Bits::Option;
    if ((set & 4) != 0) flags.bits |= Bits::Shift;
    if ((set & 8) != 0) flags.bits |= Bits::Command;
    const ModifierFlags withMore{flags.bits | Bits::CapsLock | Bits::NumericPad | Bits::Function};
    const std::uint32_t mask = carbonModifiersFromFlags(withMore);
    EXPECT_EQ(mask, carbonModifiersFromFlags(flags));
    EXPECT_EQ(flagsFromCarbonModifiers(mask | 0x400 | 0x1), flags);
    EXPECT_EQ(modifierListFromFlags(withMore), modifierListFromFlags(flags));
    ModifierList list = modifierListFromFlags(withMore);
    list.insert(list.begin(), {15, 0, -11, 10});
    std::ranges::reverse(list);
    EXPECT_EQ(modifierFlagsFromList(list), flags);
    EXPECT_EQ(description(withMore), description(flags));
  }
}

TEST(ModifierFlagsTest, EachModifierHasItsNumbersAndItsSymbol) {
  const struct {
    std::uint32_t flag;
    std::uint32_t mask;
    std::int64_t code;
    const char* symbol;
  } rows[] = {
      {0x40000, 0x1000, 12, "⌃"},
      {0x80000, 0x800, 13, "⌥"},
      {0x20000, 0x200, 14, "⇧"},
      {0x100000, 0x100, 11, "⌘"},
  };
  std::string symbols;
  ModifierFlags all;
  ModifierList list;
  for (const auto& row : rows) {
    const ModifierFlags flags{row.flag};
    EXPECT_EQ(carbonModifiersFromFlags(flags), row.mask);
    EXPECT_EQ(modifierListFromFlags(flags), ModifierList{row.code});
    EXPECT_EQ(description(flags), row.symbol);
    symbols += row.symbol;
    all.bits |= row.flag;
    list.push_back(row.code);
  }
  // All together, in the order of the rows.
  EXPECT_EQ(description(all), symbols);
  EXPECT_EQ(modifierListFromFlags(all), list);
}

}  // namespace
}  // namespace hotkeys
