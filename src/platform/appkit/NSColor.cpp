#include "platform/appkit/NSColor.h"

#include <algorithm>
#include <charconv>

namespace platform {
namespace {

constexpr NamedValue<NSColor> kThemeColors[] = {
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

NSColor NSColor::blendedColorWithFraction(double fraction, const NSColor& other) const {
  const auto between = [fraction](double from, double to) { return from + (to - from) * fraction; };
  NSColor blend =
      RGBA{between(fixed_.red, other.fixed_.red), between(fixed_.green, other.fixed_.green),
           between(fixed_.blue, other.fixed_.blue), between(fixed_.alpha, other.fixed_.alpha)};
  std::ranges::transform(themeShares_, other.themeShares_, blend.themeShares_.begin(), between);
  return blend;
}

template <>
std::optional<NSColor> attributeFromText<NSColor>(std::string_view text) {
  return text.starts_with('#') ? colorFromHex(text.substr(1)) : valueNamed(text, kThemeColors);
}

}  // namespace platform
