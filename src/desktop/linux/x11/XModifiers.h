#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "desktop/linux/keys/Keymap.h"

namespace linux_desktop {

/// Which bits of a key event's state stand for which modifiers: any keyboard may have its own. A
/// value.
class XModifiers {
 public:
  /// All bits that modifiers may have.
  static constexpr std::uint16_t kAll = 0xff;

  XModifiers(const xcb_get_modifier_mapping_reply_t& mapping, const Keymap& keymap);

  /// The state in which the modifiers of a hot-key mask are held, and no others. None
  /// when the keyboard lacks one of them or the mask has other bits.
  [[nodiscard]] std::optional<std::uint16_t> stateOf(std::uint32_t hotKeyModifiers) const;
  /// The NSEventModifierFlags of a state.
  [[nodiscard]] std::uint32_t flagsOf(std::uint32_t state) const;

  /// The bits of the lock keys (Caps Lock, Num Lock, Scroll Lock), which say nothing of what the
  /// user holds.
  [[nodiscard]] std::uint16_t locks() const { return locks_; }
  /// Every set of locks that may be on, none of them first.
  [[nodiscard]] const std::vector<std::uint16_t>& lockStates() const { return lockStates_; }

  bool operator==(const XModifiers&) const = default;

 private:
  /// In the order of the table; 0: the keyboard lacks it.
  std::vector<std::uint16_t> bits_;
  std::uint16_t locks_ = XCB_MOD_MASK_LOCK;
  std::vector<std::uint16_t> lockStates_;
};

}  // namespace linux_desktop
