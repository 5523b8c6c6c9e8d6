#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "hotkeys/Key.h"
#include "hotkeys/ModifierFlags.h"
#include "platform/foundation/Value.h"

namespace hotkeys {

/// What a hot key is registered for: the two numbers that the hot-key service takes. A value.
///
/// Any two numbers make a combination, also a code that belongs to no key.
class KeyCombo {
 public:
  KeyCombo(std::uint32_t keyCode, std::uint32_t modifiers)
      : carbonKeyCode(keyCode), carbonModifiers(modifiers) {}
  KeyCombo(Key key, ModifierFlags modifiers);
  /// From a key's name, as `keyFromName` finds it; a name of no key makes the key A.
  KeyCombo(std::string_view keyName, ModifierFlags modifiers);
  /// From the dictionary form; none if an entry is missing or no integer of 32 bits without sign.
  [[nodiscard]] static std::optional<KeyCombo> fromDictionary(
      const platform::Dictionary& dictionary);

  std::uint32_t carbonKeyCode = 0;
  std::uint32_t carbonModifiers = 0;

  /// None when the code belongs to no key.
  [[nodiscard]] std::optional<Key> key() const { return keyFromCarbonKeyCode(carbonKeyCode); }
  /// None stores the code 0, that of the key A.
  void setKey(std::optional<Key> key);
  [[nodiscard]] ModifierFlags modifiers() const {
    return flagsFromCarbonModifiers(carbonModifiers);
  }
  /// Keeps the four modifiers and drops all other bits.
  void setModifiers(ModifierFlags modifiers);

  /// The symbols of the modifiers, then the text of the key if there is one: "⌃⌥K".
  [[nodiscard]] std::string description() const;
  /// "keyCode" and "modifiers", both integers.
  [[nodiscard]] platform::Dictionary dictionary() const;

  bool operator==(const KeyCombo&) const = default;
};

}  // namespace hotkeys
