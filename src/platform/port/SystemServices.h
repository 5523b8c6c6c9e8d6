#pragma once

#include <compare>
#include <optional>
#include <string_view>

#include "platform/foundation/Value.h"

namespace platform::port {

/// The version of the running system, as far as programs choose their ways by it.
struct SystemVersion {
  int major = 0;
  int minor = 0;
  int patch = 0;
  auto operator<=>(const SystemVersion&) const = default;
};

/// The settings of other programs, for the current user on this host. Absent where programs do not
/// reach into each other's settings so.
class ForeignPreferences {
 public:
  virtual ~ForeignPreferences() = default;
  /// None removes the entry. Lasts only once it is synchronized.
  virtual void set(std::string_view key, std::optional<Value> value,
                   std::string_view application) = 0;
  /// False when it could not be stored.
  virtual bool synchronize(std::string_view application) = 0;
};

/// Messages to every program of the session that listens. Absent where there are none.
class DistributedNotifications {
 public:
  virtual ~DistributedNotifications() = default;
  virtual void post(std::string_view name) = 0;
};

}  // namespace platform::port
