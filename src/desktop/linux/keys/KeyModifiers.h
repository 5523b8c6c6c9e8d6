#pragma once

#include <cstdint>
#include <vector>

namespace linux_desktop {

class Keymap;

/// Which bits of a key event's state stand for which modifiers: any keyboard may have its own. A
/// value.
class KeyModifiers {
 public:
  /// All bits that modifiers may have.
  static constexpr std::uint32_t kAll = 0xff;

  explicit KeyModifiers(const Keymap& keymap);

  /// Every state in which the modifiers of a hot-key mask are held and no others, whichever locks
  /// are on. None when the keyboard lacks one of them or the mask has other bits.
  [[nodiscard]] std::vector<std::uint32_t> statesOf(std::uint32_t hotKeyModifiers) const;
  /// The NSEventModifierFlags of a state.
  [[nodiscard]] std::uint32_t flagsOf(std::uint32_t state) const;
  /// Whether a modifier is held that no hot-key mask has, such as the one for a key's third
  /// character.
  [[nodiscard]] bool hasOthers(std::uint32_t state) const;

 private:
  /// In the order of the table. A modifier is held while any of its bits is set: each of its keys
  /// may set another one. 0: the keyboard lacks it.
  std::vector<std::uint32_t> bits_;
  /// Of the lock keys (Caps Lock, Num Lock, Scroll Lock), which say nothing of what the user holds.
  std::uint32_t locks_;
};

}  // namespace linux_desktop
