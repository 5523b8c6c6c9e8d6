#pragma once

#include <cstdint>

namespace platform {

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
