#pragma once

#include <string_view>

/// The program's actions as they are asked for from outside of it (see port::SessionClient). Users
/// write these names into their own files, so that they stay.
namespace shared {

inline constexpr std::string_view kTogglePresentationMode = "toggle-presentation-mode";
inline constexpr std::string_view kToggleMicrophone = "toggle-microphone";
inline constexpr std::string_view kShowPreferences = "preferences";

}  // namespace shared
