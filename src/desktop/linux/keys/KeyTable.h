#pragma once

#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <span>

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

}  // namespace linux_desktop
