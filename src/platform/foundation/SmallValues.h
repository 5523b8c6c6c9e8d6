#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <string>
#include <utility>

#include "platform/port/Program.h"

namespace platform {

/// The location of a file. A value; equal when the paths are.
class NSURL {
 public:
  [[nodiscard]] static NSURL fileURLWithPath(std::string path) { return NSURL(std::move(path)); }
  [[nodiscard]] const std::string& path() const { return path_; }
  bool operator==(const NSURL&) const = default;

 private:
  explicit NSURL(std::string path) : path_(std::move(path)) {}
  std::string path_;
};

/// A moment of civil time. A value.
class NSDate {
 public:
  explicit NSDate(WallTime time) : time_(time) {}
  /// The current moment by the desktop's clock.
  [[nodiscard]] static NSDate date();

  /// The platform's default description, in UTC: "2026-11-16 19:43:02 +0000".
  [[nodiscard]] std::string description() const;

 private:
  WallTime time_;
};

/// A universally unique identifier. A value.
class NSUUID {
 public:
  /// A new random one, different from every other.
  [[nodiscard]] static NSUUID UUID();

  auto operator<=>(const NSUUID&) const = default;

 private:
  std::array<std::uint32_t, 4> words_{};
};

/// How a call of the platform's older services went; their headers name the codes.
using OSStatus = std::int32_t;
inline constexpr OSStatus noErr = 0;

/// A four-character code as the platform packs it: the first character in the high byte.
[[nodiscard]] consteval std::uint32_t fourCharCode(const char (&text)[5]) {
  std::uint32_t code = 0;
  for (int i = 0; i < 4; ++i) code = code << 8 | static_cast<unsigned char>(text[i]);
  return code;
}

}  // namespace platform
