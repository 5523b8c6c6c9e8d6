#pragma once

#include <xkbcommon/xkbcommon.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace linux_desktop {

/// A key of the platform and a keysym that it has on a keyboard here.
struct KeyRow {
  /// Of `platform/carbon/KeyCodes.h`.
  std::uint16_t code;
  xkb_keysym_t keysym;
  /// The character by which the platform has the key; 0: the one that the keysym stands for.
  char32_t text = 0;
};

/// Every key that a shortcut can have; modifier keys are none. A code may have several rows, the
/// preferred one first.
[[nodiscard]] std::span<const KeyRow> keyTable();
/// Null when no key has that keysym. A capital letter is its small one.
[[nodiscard]] const KeyRow* keyRowOf(xkb_keysym_t keysym);

/// What is written for Control, Option, Shift and Command before a key.
using ModifierNames = std::array<const char*, 4>;

[[nodiscard]] std::string modifierText(std::uint32_t modifiers, const ModifierNames& names);
/// Stands for a modifier that is none of those four.
inline constexpr std::uint32_t kOtherModifier = 1U << 31U;
/// The modifier that configurations call so, in whatever letters: "ctrl", "Mod4". None: it is none.
[[nodiscard]] std::optional<std::uint32_t> modifierNamed(std::string_view name);

/// A combination of `platform/carbon/KeyCodes.h`; by itself as people here read it,
/// "Control+Alt+p".
[[nodiscard]] std::string combinationName(std::uint32_t keyCode, std::uint32_t modifiers,
                                          const ModifierNames& names = {"Control+", "Alt+",
                                                                        "Shift+", "Super+"});

/// A combination of `platform/carbon/KeyCodes.h` as Qt and KDE write it in one number. None for
/// what they would write in another way on each layout: keys of the block of digits, and Shift with
/// what is no letter.
[[nodiscard]] std::optional<int> qtKeyOf(std::uint32_t keyCode, std::uint32_t modifiers);

/// Whether a combination is left to the programs that people work with, so that it is no hot key:
/// Control alone with a key that nearly every one of them uses, Shift alone with a key that writes
/// or moves in a text, and a key without any modifier. A virtual key code and a mask of
/// `platform/carbon/KeyCodes.h`.
[[nodiscard]] bool isReservedForPrograms(std::uint32_t keyCode, std::uint32_t modifiers);

}  // namespace linux_desktop
