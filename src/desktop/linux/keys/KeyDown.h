#pragma once

#include <cstdint>
#include <optional>

#include "desktop/linux/keys/Keymap.h"
#include "platform/appkit/NSEvent.h"

namespace linux_desktop {

/// The event of a key that went down while the modifiers in `flags` (NSEventModifierFlags) were
/// held; none for a modifier key.
[[nodiscard]] std::optional<platform::NSEvent> keyDownEvent(const Keymap& keymap, Keycode key,
                                                            KeyboardGroup group,
                                                            std::uint32_t flags);

}  // namespace linux_desktop
