#include "desktop/linux/x11/XKeyTranslator.h"

#include "desktop/linux/keys/KeyDown.h"

namespace linux_desktop {

std::optional<platform::NSEvent> XKeyTranslator::translate(const QKeyEvent& press) {
  const Keymap* keymap = keyboard_.keymap();
  if (keymap == nullptr || press.nativeScanCode() == 0) return std::nullopt;
  const std::uint32_t state = press.nativeModifiers();
  // Where XKB has the layout in the state of a key event.
  const KeyboardGroup group = state >> 13U & 3U;
  const XModifiers& modifiers = *keyboard_.modifiers();
  auto event = keyDownEvent(*keymap, press.nativeScanCode(), group, modifiers.flagsOf(state));
  if (event && modifiers.hasOthers(state)) event->charactersIgnoringModifiers.reset();
  return event;
}

}  // namespace linux_desktop
