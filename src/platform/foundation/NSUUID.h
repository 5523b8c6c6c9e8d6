#pragma once

#include <array>
#include <compare>
#include <cstdint>

namespace platform {

/// A universally unique identifier. A value.
class NSUUID {
 public:
  /// A new random one, different from every other.
  [[nodiscard]] static NSUUID UUID();

  auto operator<=>(const NSUUID&) const = default;

 private:
  std::array<std::uint32_t, 4> words_{};
};

}  // namespace platform
