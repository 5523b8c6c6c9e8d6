#pragma once

#include <string_view>

/// The entries of the application's settings. Each is read through NSUserDefaults; a value of
/// another type than the one given here counts as absent, and each reader decides what that means.
namespace shared {

// The panel's feature switches, Bool. Absent: off.
inline constexpr std::string_view kUserdefaultsToggleDesktopIcons =
    "kUserdefaultsToggleDesktopIcons";
inline constexpr std::string_view kUserdefaultsToggleDnd = "kUserdefaultsToggleDnd";
inline constexpr std::string_view kUserdefaultsToggleHideActiveApps =
    "kUserdefaultsToggleHideActiveApps";
inline constexpr std::string_view kUserdefaultsToggleSpeakerOff = "kUserdefaultsToggleSpeakerOff";
inline constexpr std::string_view kUserdefaultsToggleWallpaper = "kUserdefaultsToggleWallpaper";

/// String: the absolute path of the chosen wallpaper, never a URL. Absent: none was chosen.
inline constexpr std::string_view kUserdefaultsSelectedWallpaper = "kUserdefaultsSelectedWallpaper";

// A shortcut is a pair: the key's text (String) and the modifier list (Array of integers, see
// hotkeys/ModifierFlags.h). Absent: no shortcut.
inline constexpr std::string_view kuserdefault_ToggleAppShortcut = "kuserdefault_ToggleAppShortcut";
inline constexpr std::string_view kuserdefault_ToggleAppFlag = "kuserdefault_ToggleAppFlag";
inline constexpr std::string_view kuserdefault_MuteMicShortcut = "kuserdefault_MuteMicShortcut";
inline constexpr std::string_view kuserdefault_MuteMicFlag = "kuserdefault_MuteMicFlag";

/// Bool: whether the program is among the login items. Absent: yes, and the launch stores that.
/// (The key has been spelled so from the first version on.)
inline constexpr std::string_view kUserdeaultsLaunchAtLogin = "kUserdeaultsLaunchAtLogin";

}  // namespace shared
