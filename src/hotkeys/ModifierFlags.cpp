#include "hotkeys/ModifierFlags.h"

#include <array>
#include <string_view>

#include "platform/carbon/KeyCodes.h"

namespace hotkeys {
namespace {

struct Modifier {
  std::uint32_t flag;
  std::uint32_t carbonMask;
  std::int64_t code;
  std::string_view symbol;
};

/// In the order of symbols and stored codes.
constexpr std::array kModifiers{
    Modifier{ModifierFlags::Bits::Control, platform::controlKey, 12, "⌃"},
    Modifier{ModifierFlags::Bits::Option, platform::optionKey, 13, "⌥"},
    Modifier{ModifierFlags::Bits::Shift, platform::shiftKey, 14, "⇧"},
    Modifier{ModifierFlags::Bits::Command, platform::cmdKey, 11, "⌘"},
};

}  // namespace

std::uint32_t carbonModifiersFromFlags(ModifierFlags flags) {
  std::uint32_t mask = 0;
  for (const Modifier& modifier : kModifiers) {
    if (flags.contains(modifier.flag)) mask |= modifier.carbonMask;
  }
  return mask;
}

ModifierFlags flagsFromCarbonModifiers(std::uint32_t mask) {
  ModifierFlags flags;
  for (const Modifier& modifier : kModifiers) {
    if ((mask & modifier.carbonMask) != 0) flags.bits |= modifier.flag;
  }
  return flags;
}

std::string description(ModifierFlags flags) {
  std::string text;
  for (const Modifier& modifier : kModifiers) {
    if (flags.contains(modifier.flag)) text += modifier.symbol;
  }
  return text;
}

ModifierFlags modifierFlagsFromList(const ModifierList& list) {
  ModifierFlags flags;
  for (const std::int64_t code : list) {
    for (const Modifier& modifier : kModifiers) {
      if (code == modifier.code) flags.bits |= modifier.flag;
    }
  }
  return flags;
}

ModifierList modifierListFromFlags(ModifierFlags flags) {
  ModifierList list;
  for (const Modifier& modifier : kModifiers) {
    if (flags.contains(modifier.flag)) list.push_back(modifier.code);
  }
  return list;
}

}  // namespace hotkeys
