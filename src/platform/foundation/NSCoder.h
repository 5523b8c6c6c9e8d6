#pragma once

#include <optional>
#include <string_view>

namespace platform {

/// One object of an interface description, as its class's `initWithCoder` reads it.
class NSCoder {
 public:
  virtual ~NSCoder() = default;
  /// The attribute's text, or none when the description does not say. Valid during the call that
  /// the coder was passed to.
  [[nodiscard]] virtual std::optional<std::string_view> attribute(std::string_view name) const = 0;
};

}  // namespace platform
