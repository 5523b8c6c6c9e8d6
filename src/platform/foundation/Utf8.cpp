#include "platform/foundation/Utf8.h"

#include <cstddef>
#include <optional>

namespace platform {
namespace {

struct Decoded {
  char32_t character = 0;
  std::size_t length = 0;
};

struct Form {
  std::size_t length;
  char32_t least;
  unsigned char leadMask;
  unsigned char lead;
};

constexpr Form kForms[] = {
    {1, 0, 0x80, 0x00},
    {2, 0x80, 0xE0, 0xC0},
    {3, 0x800, 0xF0, 0xE0},
    {4, 0x10000, 0xF8, 0xF0},
};

std::optional<Decoded> decodeAs(const Form& form, std::string_view text) {
  if (text.size() < form.length) return std::nullopt;
  const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  char32_t character = byte(0) & static_cast<unsigned char>(~form.leadMask);
  for (std::size_t index = 1; index < form.length; ++index) {
    if ((byte(index) & 0xC0U) != 0x80U) return std::nullopt;
    character = (character << 6U) | (byte(index) & 0x3FU);
  }
  const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
  if (character < form.least || surrogate || character > 0x10FFFF) return std::nullopt;
  return Decoded{character, form.length};
}

std::optional<Decoded> decodeFirst(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  for (const Form& form : kForms) {
    if ((first & form.leadMask) == form.lead) return decodeAs(form, text);
  }
  return std::nullopt;
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

}  // namespace platform
