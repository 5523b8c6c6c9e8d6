#include "desktop/linux/keys/KeyModifiers.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <numeric>

#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
namespace {

using platform::NSEventModifierFlags;
using Keysyms = KeyModifiers::Keysyms;

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
constexpr Keysyms kNumLock{XKB_KEY_Num_Lock, XKB_KEY_Num_Lock};
constexpr Keysyms kScrollLock{XKB_KEY_Scroll_Lock, XKB_KEY_Scroll_Lock};

}  // namespace

KeyModifiers::KeyModifiers(const std::function<std::uint32_t(const Keysyms& keysyms)>& bitsOf)
    : locks_(kCapsLock) {
  std::uint32_t held = 0;
  for (const ModifierRow& row : kModifiers) {
    bits_.push_back(bitsOf(row.keysyms));
    held |= bits_.back();
  }
  locks_ |= bitsOf(kNumLock);
  locks_ |= bitsOf(kScrollLock);
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

std::optional<platform::NSEvent> keyDownEvent(const Keymap& keymap, const KeyModifiers& modifiers,
                                              Keycode key, KeyboardGroup group,
                                              std::uint32_t state) {
  auto event = keyDownEvent(keymap, key, group, modifiers.flagsOf(state));
  if (event && modifiers.hasOthers(state)) event->charactersIgnoringModifiers.reset();
  return event;
}

}  // namespace linux_desktop
