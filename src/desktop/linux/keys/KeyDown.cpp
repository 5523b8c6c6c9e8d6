#include "desktop/linux/keys/KeyDown.h"

#include <string>

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

}  // namespace

std::optional<platform::NSEvent> keyDownEvent(const Keymap& keymap, Keycode key,
                                              KeyboardGroup group, std::uint32_t flags) {
  if (keymap.isModifier(key, group)) return std::nullopt;
  platform::NSEvent event;
  event.type = platform::NSEventType::KeyDown;
  event.keyCode = keymap.codeOf(key, group);
  event.charactersIgnoringModifiers =
      keymap.textOf(key, group, (flags & NSEventModifierFlags::Shift) != 0);
  event.modifierFlags = flags;
  const std::string text = event.charactersIgnoringModifiers.value_or("");
  if (keymap.isOnKeypad(key, group) || isArrowText(text)) {
    event.modifierFlags |= NSEventModifierFlags::NumericPad;
  }
  if (isFunctionText(text)) event.modifierFlags |= NSEventModifierFlags::Function;
  return event;
}

}  // namespace linux_desktop
