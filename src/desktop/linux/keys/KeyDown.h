#pragma once

#include <cstdint>
#include <optional>

#include "desktop/linux/keys/Keymap.h"
#include "platform/appkit/NSEvent.h"

namespace linux_desktop {

/// The event of a key that went down while the modifiers in `flags` (NSEventModifierFlags) were
/// held; none for a modifier key. It has characters only where a hot key that is made by them is
/// one of this very key: the key's own, or those that it has with the other state of Shift, as "1"
/// for the "&" of a French keyboard.
[[nodiscard]] std::optional<platform::NSEvent> keyDownEvent(const Keymap& keymap, Keycode key,
                                                            KeyboardGroup group,
                                                            std::uint32_t flags);

}  // namespace linux_desktop
