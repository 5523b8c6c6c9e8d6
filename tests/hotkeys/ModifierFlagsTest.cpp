#include "hotkeys/ModifierFlags.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace hotkeys {
namespace {

using Bits = ModifierFlags::Bits;

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
