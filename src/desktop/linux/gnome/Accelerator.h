#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace linux_desktop {

/// A combination of `platform/carbon/KeyCodes.h` as GNOME writes it, "<Control><Alt>p"; empty where
/// it has no name for the key.
[[nodiscard]] std::string acceleratorOf(std::uint32_t keyCode, std::uint32_t modifiers);

/// What in GNOME's settings has that accelerator already, however it is written there, be it the
/// window manager, the shell or a key of the user's own: "schema key", or, of the user's own, its
/// path. None: it is free, as far as settings tell.
[[nodiscard]] std::optional<std::string> holderOfAccelerator(std::string_view accelerator);

/// The keys that users have bound to commands of their own, as paths of their settings.
inline constexpr const char* kMediaKeys = "org.gnome.settings-daemon.plugins.media-keys";
inline constexpr const char* kOwnBindings = "custom-keybindings";
inline constexpr const char* kOwnBinding =
    "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding";

}  // namespace linux_desktop
