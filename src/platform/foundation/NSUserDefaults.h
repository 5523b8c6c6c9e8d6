#pragma once

#include <optional>
#include <string_view>

#include "platform/foundation/NSObject.h"
#include "platform/foundation/Value.h"

namespace platform {

/// The application's settings. What is set is read back at once and kept between runs; values keep
/// their type. Nothing is registered as a default: an absent key reads as none. Main thread only.
class NSUserDefaults final : public NSObject {
 public:
  [[nodiscard]] static NSUserDefaults& standardUserDefaults();

  [[nodiscard]] std::optional<Value> objectForKey(std::string_view key) const;
  /// The value if it is of type T; one of another type counts as absent.
  template <typename T>
  [[nodiscard]] std::optional<T> objectOfType(std::string_view key) const {
    const std::optional<Value> value = objectForKey(key);
    return value ? value->as<T>() : std::nullopt;
  }

  void setBool(bool value, std::string_view key) { setObject(value, key); }
  void setObject(Value value, std::string_view key);
  void removeObjectForKey(std::string_view key);
};

// The settings of another application. Main thread only. The current user on the current host are
// the only domain there is; another one is a programming error. On a desktop without foreign
// preferences setting does nothing and synchronizing fails.

inline constexpr std::string_view kCFPreferencesCurrentUser = "kCFPreferencesCurrentUser";
inline constexpr std::string_view kCFPreferencesCurrentHost = "kCFPreferencesCurrentHost";

/// None removes the entry.
void CFPreferencesSetValue(std::string_view key, std::optional<Value> value,
                           std::string_view application, std::string_view user,
                           std::string_view host);
bool CFPreferencesSynchronize(std::string_view application, std::string_view user,
                              std::string_view host);

}  // namespace platform
