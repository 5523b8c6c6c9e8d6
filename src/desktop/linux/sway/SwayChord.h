#pragma once

#include <QByteArray>
#include <cstdint>
#include <vector>

#include "desktop/linux/keys/Keymap.h"

namespace linux_desktop {

/// A combination as sway tells two of them apart: modifiers with a key by its number, or by what it
/// gives.
struct SwayChord {
  /// Of `platform/carbon/KeyCodes.h`, and a bit of ours for all that are none of those.
  std::uint32_t modifiers = 0;
  /// 0: it is told by the keysym.
  Keycode key = 0;
  /// A letter's small one.
  xkb_keysym_t keysym = XKB_KEY_NoSymbol;
  bool operator==(const SwayChord&) const = default;
};

/// What "Mod4+Return" of a `bindsym` stands for.
[[nodiscard]] SwayChord swayChordOfSymbol(const QByteArray& combination);
/// What "Mod4+36" of a `bindcode` stands for.
[[nodiscard]] SwayChord swayChordOfCode(const QByteArray& combination);
/// What to write for modifiers of `platform/carbon/KeyCodes.h` and a key's number.
[[nodiscard]] QByteArray swayCode(std::uint32_t modifiers, Keycode key);

/// All that a press of the key is to sway, in a layout.
[[nodiscard]] std::vector<SwayChord> swayChordsOfPress(const Keymap& keymap, KeyboardGroup group,
                                                       std::uint32_t modifiers, Keycode key);

}  // namespace linux_desktop
