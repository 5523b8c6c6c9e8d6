#pragma once

#include <optional>
#include <string_view>

#include "platform/foundation/Value.h"

namespace platform {

inline constexpr std::string_view kCFPreferencesCurrentUser = "kCFPreferencesCurrentUser";
inline constexpr std::string_view kCFPreferencesCurrentHost = "kCFPreferencesCurrentHost";

// The settings of another application. Main thread only. The current user on the current host are
// the only domain there is; another one is a programming error. On a desktop without foreign
// preferences setting does nothing and synchronizing fails.

/// None removes the entry.
void CFPreferencesSetValue(std::string_view key, std::optional<Value> value,
                           std::string_view application, std::string_view user,
                           std::string_view host);
bool CFPreferencesSynchronize(std::string_view application, std::string_view user,
                              std::string_view host);

}  // namespace platform
