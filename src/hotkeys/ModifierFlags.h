#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/appkit/NSEvent.h"

namespace hotkeys {

/// The modifier bits of a keyboard event, as NSEvent reports them. A value.
///
/// Bits of other modifiers (caps lock, the numeric pad) are carried along and ignored by every
/// conversion.
struct ModifierFlags {
  using Bits = platform::NSEventModifierFlags;

  std::uint32_t bits = 0;

  /// Whether every bit of `flags` is set.
  [[nodiscard]] constexpr bool contains(std::uint32_t flags) const {
    return (bits & flags) == flags;
  }
  [[nodiscard]] constexpr bool isEmpty() const { return bits == 0; }

  constexpr bool operator==(const ModifierFlags&) const = default;
};

/// The mask of the hot-key service for the flags, and back; other bits are dropped.
[[nodiscard]] std::uint32_t carbonModifiersFromFlags(ModifierFlags flags);
[[nodiscard]] ModifierFlags flagsFromCarbonModifiers(std::uint32_t mask);

/// The symbols of the modifiers that are set, in the order "⌃⌥⇧⌘".
[[nodiscard]] std::string description(ModifierFlags flags);

/// Modifiers as the settings hold them, a code each: 11 command, 12 control, 13 option, 14 shift.
using ModifierList = std::vector<std::int64_t>;

/// Unknown codes are skipped; order and repetition do not matter.
[[nodiscard]] ModifierFlags modifierFlagsFromList(const ModifierList& list);
/// The codes of the modifiers that are set, in the order control, option, shift, command.
[[nodiscard]] ModifierList modifierListFromFlags(ModifierFlags flags);

}  // namespace hotkeys
