#pragma once

#include <optional>
#include <string_view>

#include "platform/foundation/Value.h"

namespace platform::port {

/// The settings of the application, kept between runs by the desktop. Main thread only.
/// Settings are Bools, integers, strings and arrays of these, and come back as what they were stored
/// as; anything else is a programming error.
class DefaultsStore {
 public:
  virtual ~DefaultsStore() = default;

  [[nodiscard]] virtual std::optional<Value> object(std::string_view key) const = 0;

  /// The new value is seen by `object` at once, and by the next run of the program however this one
  /// is ended, unless it is killed. `set` does not wait for the disk. Where the value cannot be
  /// stored for good (no space, no permission) the desktop says so on standard error and keeps it
  /// for this run.
  virtual void set(std::string_view key, Value value) = 0;
  virtual void remove(std::string_view key) = 0;
};

}  // namespace platform::port
