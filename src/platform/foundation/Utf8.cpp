#include "platform/foundation/Utf8.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <optional>

namespace platform {
namespace {

struct Decoded {
  char32_t character = 0;
  std::size_t length = 0;
};

std::optional<Decoded> decodeFirst(std::string_view text) {
  // By length: the least character that takes so many bytes.
  static constexpr std::array<char32_t, 5> kLeast{0, 0, 0x80, 0x800, 0x10000};
  const auto byte = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  const auto length = static_cast<std::size_t>(std::countl_one(byte(0)));
  if (length == 0) return Decoded{byte(0), 1};
  if (length == 1 || length >= kLeast.size() || text.size() < length) return std::nullopt;
  char32_t character = byte(0) & (0x7FU >> length);
  for (std::size_t index = 1; index < length; ++index) {
    if ((byte(index) & 0xC0U) != 0x80U) return std::nullopt;
    character = (character << 6U) | (byte(index) & 0x3FU);
  }
  const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
  if (character < kLeast.at(length) || surrogate || character > 0x10FFFF) return std::nullopt;
  return Decoded{character, length};
}

void append(std::u16string& units, char32_t character) {
  if (character < 0x10000) {
    units.push_back(static_cast<char16_t>(character));
    return;
  }
  const char32_t rest = character - 0x10000;
  units.push_back(static_cast<char16_t>(0xD800 + (rest >> 10U)));
  units.push_back(static_cast<char16_t>(0xDC00 + (rest & 0x3FFU)));
}

}  // namespace

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::optional<Decoded> decoded = decodeFirst(text);
    if (!decoded) return false;
    text.remove_prefix(decoded->length);
  }
  return true;
}

std::u16string utf16FromUtf8(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  while (!text.empty()) {
    const Decoded decoded = decodeFirst(text).value_or(Decoded{0xFFFD, 1});
    append(units, decoded.character);
    text.remove_prefix(decoded.length);
  }
  return units;
}

std::string lowercaseString(std::string_view text) {
  std::string lowered(text);
  std::ranges::transform(lowered, lowered.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return lowered;
}

}  // namespace platform
