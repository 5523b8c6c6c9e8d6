#include "desktop/linux/keys/KeyDown.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "desktop/linux/keys/KeyTable.h"
#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
namespace {

using platform::NSEventModifierFlags;

/// U+F700 to U+F8FF, where the platform has the characters of keys that write nothing.
bool isFunctionText(const std::string& text) {
  return text >= "\uf700" && text <= "\uf8ff";
}

/// The arrows count as keys of the block at the side, as on the platform's keyboards.
bool isArrowText(const std::string& text) {
  return text >= "\uf700" && text <= "\uf703";
}

/// These count by their codes, all others by their characters.
constexpr std::uint16_t kFunctionKeys[] = {platform::kVK_F1,  platform::kVK_F2,  platform::kVK_F3,
                                           platform::kVK_F4,  platform::kVK_F5,  platform::kVK_F6,
                                           platform::kVK_F7,  platform::kVK_F8,  platform::kVK_F9,
                                           platform::kVK_F10, platform::kVK_F11, platform::kVK_F12};

/// The code that a hot key gets by a character; Escape has a code, but no such character.
std::optional<std::uint16_t> codeNamed(const std::string& text) {
  constexpr char kEscape = '\x1b';
  if (text.size() != 1 || text.front() == kEscape) return std::nullopt;
  const KeyRow* row = keyRowOf(xkb_utf32_to_keysym(static_cast<unsigned char>(text.front())));
  return row == nullptr ? std::nullopt : std::optional(row->code);
}

/// The character by which a hot key of this key is found again, or else the one that the key has
/// with the other state of Shift.
std::optional<std::string> nameOf(const Keymap& keymap, Keycode key, KeyboardGroup group,
                                  bool shift) {
  const auto leadsBack = [&](std::uint16_t code) {
    const auto keys = keymap.keysOf(code, group, shift);
    return std::ranges::find(keys, key) != keys.end();
  };
  const std::uint16_t own = keymap.codeOf(key, group);
  if (std::ranges::find(kFunctionKeys, own) != std::end(kFunctionKeys)) {
    return leadsBack(own) ? keymap.textOf(key, group, shift) : std::nullopt;
  }
  for (const bool withShift : {shift, !shift}) {
    const auto text = keymap.textOf(key, group, withShift);
    const auto code = text ? codeNamed(*text) : std::nullopt;
    if (code && leadsBack(*code)) return text;
  }
  return std::nullopt;
}

}  // namespace

std::optional<platform::NSEvent> keyDownEvent(const Keymap& keymap, Keycode key,
                                              KeyboardGroup group, std::uint32_t flags) {
  if (keymap.isModifier(key, group)) return std::nullopt;
  platform::NSEvent event;
  event.type = platform::NSEventType::KeyDown;
  event.keyCode = keymap.codeOf(key, group);
  const bool shift = (flags & NSEventModifierFlags::Shift) != 0;
  event.charactersIgnoringModifiers = nameOf(keymap, key, group, shift);
  event.modifierFlags = flags;
  const std::string text = keymap.textOf(key, group, shift).value_or("");
  if (keymap.isOnKeypad(key, group) || isArrowText(text)) {
    event.modifierFlags |= NSEventModifierFlags::NumericPad;
  }
  if (isFunctionText(text)) event.modifierFlags |= NSEventModifierFlags::Function;
  return event;
}

}  // namespace linux_desktop
