#include "platform/appkit/NSColor.h"

#include <array>
#include <charconv>

namespace platform {
namespace {

struct NamedColor {
  std::string_view name;
  NSSystemColor color;
};

constexpr NamedColor kNamedColors[] = {
    {"labelColor", NSSystemColor::Label},
    {"secondaryLabelColor", NSSystemColor::SecondaryLabel},
    {"separatorColor", NSSystemColor::Separator},
    {"windowBackgroundColor", NSSystemColor::WindowBackground},
    {"controlAccentColor", NSSystemColor::ControlAccent},
};

std::optional<NSColor> colorFromHex(std::string_view digits) {
  if (digits.size() != 6 && digits.size() != 8) return std::nullopt;
  std::array<double, 4> components{0, 0, 0, 1};
  for (std::size_t i = 0; 2 * i < digits.size(); ++i) {
    const char* first = digits.data() + 2 * i;
    unsigned value = 0;
    const auto [stopped, error] = std::from_chars(first, first + 2, value, 16);
    if (error != std::errc{} || stopped != first + 2) return std::nullopt;
    components[i] = value / 255.0;
  }
  return NSColor(NSColor::RGBA{components[0], components[1], components[2], components[3]});
}

}  // namespace

template <>
std::optional<NSColor> attributeFromText<NSColor>(std::string_view text) {
  if (text.starts_with('#')) return colorFromHex(text.substr(1));
  for (const NamedColor& named : kNamedColors) {
    if (named.name == text) return NSColor(named.color);
  }
  return std::nullopt;
}

}  // namespace platform
