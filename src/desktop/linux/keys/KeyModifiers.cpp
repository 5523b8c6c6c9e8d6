#include "desktop/linux/keys/KeyModifiers.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <numeric>

#include "desktop/linux/keys/Keymap.h"
#include "platform/appkit/NSEvent.h"
#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
namespace {

using platform::NSEventModifierFlags;
/// Of the keys that make one modifier, left and right, without any other.
using Keysyms = std::array<xkb_keysym_t, 2>;

/// In XKB always the same one.
constexpr std::uint32_t kCapsLock = 1U << 1U;

struct ModifierRow {
  std::uint32_t hotKeyModifier;
  std::uint32_t flag;
  /// Of the keys that make it. Meta and Hyper often share a bit with Alt and Super, but are others.
  Keysyms keysyms;
};
constexpr ModifierRow kModifiers[] = {
    {platform::controlKey, NSEventModifierFlags::Control, {XKB_KEY_Control_L, XKB_KEY_Control_R}},
    {platform::optionKey, NSEventModifierFlags::Option, {XKB_KEY_Alt_L, XKB_KEY_Alt_R}},
    {platform::shiftKey, NSEventModifierFlags::Shift, {XKB_KEY_Shift_L, XKB_KEY_Shift_R}},
    {platform::cmdKey, NSEventModifierFlags::Command, {XKB_KEY_Super_L, XKB_KEY_Super_R}},
};
constexpr Keysyms kLocks{XKB_KEY_Num_Lock, XKB_KEY_Scroll_Lock};

}  // namespace

KeyModifiers::KeyModifiers(const Keymap& keymap) : locks_(kCapsLock) {
  std::uint32_t held = 0;
  for (const ModifierRow& row : kModifiers) {
    bits_.push_back(keymap.modifiersSetBy(row.keysyms));
    held |= bits_.back();
  }
  locks_ |= keymap.modifiersSetBy(kLocks);
  locks_ &= ~held;
}

std::vector<std::uint32_t> KeyModifiers::statesOf(std::uint32_t hotKeyModifiers) const {
  std::vector<std::uint32_t> wanted;
  std::uint32_t allowed = locks_;
  for (std::size_t i = 0; i < std::size(kModifiers); ++i) {
    if ((hotKeyModifiers & kModifiers[i].hotKeyModifier) == 0) continue;
    hotKeyModifiers &= ~kModifiers[i].hotKeyModifier;
    wanted.push_back(bits_[i]);
    allowed |= bits_[i];
  }
  std::vector<std::uint32_t> states;
  for (std::uint32_t state = 0; hotKeyModifiers == 0 && state <= kAll; ++state) {
    const bool isHeld =
        std::ranges::all_of(wanted, [state](std::uint32_t bits) { return (state & bits) != 0; });
    if (isHeld && (state & ~allowed) == 0) states.push_back(state);
  }
  return states;
}

std::uint32_t KeyModifiers::flagsOf(std::uint32_t state) const {
  std::uint32_t flags =
      (state & kCapsLock) != 0 ? NSEventModifierFlags::CapsLock : std::uint32_t{0};
  for (std::size_t i = 0; i < std::size(kModifiers); ++i) {
    if ((state & bits_[i]) != 0) flags |= kModifiers[i].flag;
  }
  return flags;
}

bool KeyModifiers::hasOthers(std::uint32_t state) const {
  const std::uint32_t known = std::accumulate(bits_.begin(), bits_.end(), locks_, std::bit_or());
  return (state & kAll & ~known) != 0;
}

}  // namespace linux_desktop
