#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "platform/foundation/NSCoder.h"

namespace platform {

/// Colours that the desktop's theme decides; whoever paints resolves them.
enum class NSSystemColor { Label, SecondaryLabel, Separator, WindowBackground, ControlAccent };

/// Each from 0 to 1.
struct NSColorComponents {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;
  bool operator==(const NSColorComponents&) const = default;
};

/// A colour: fixed red, green, blue and alpha from 0 to 1, one of the theme's, or a blend of such.
/// A value.
class NSColor {
 public:
  using RGBA = NSColorComponents;
  /// How much of each of the theme's colours, in the order of NSSystemColor.
  using ThemeShares =
      std::array<double, static_cast<std::size_t>(NSSystemColor::ControlAccent) + 1>;

  /// Opaque black.
  constexpr NSColor() = default;
  constexpr NSColor(RGBA rgba) : fixed_(rgba) {}
  constexpr NSColor(NSSystemColor color) : fixed_{0, 0, 0, 0} {
    themeShares_[static_cast<std::size_t>(color)] = 1;
  }

  // The platform's named colours; the greys by its white values.
  [[nodiscard]] static constexpr NSColor blackColor() { return white(0); }
  [[nodiscard]] static constexpr NSColor whiteColor() { return white(1); }
  [[nodiscard]] static constexpr NSColor lightGrayColor() { return white(2.0 / 3); }
  [[nodiscard]] static constexpr NSColor grayColor() { return white(0.5); }
  [[nodiscard]] static constexpr NSColor blueColor() { return RGBA{0, 0, 1, 1}; }

  [[nodiscard]] constexpr NSColor colorWithAlphaComponent(double alpha) const {
    NSColor color = *this;
    if (rgba()) color.fixed_.alpha = alpha;
    return color;
  }
  /// What lies that fraction of the way from this colour to the other.
  [[nodiscard]] NSColor blendedColorWithFraction(double fraction, const NSColor& other) const;

  /// The components, or none where the theme has a share in the colour.
  [[nodiscard]] constexpr std::optional<RGBA> rgba() const {
    return themeShares_ == ThemeShares{} ? std::optional(fixed_) : std::nullopt;
  }
  /// The colour is the sum of this and the theme's shares.
  [[nodiscard]] const RGBA& fixedPart() const { return fixed_; }
  [[nodiscard]] const ThemeShares& themeShares() const { return themeShares_; }

  bool operator==(const NSColor&) const = default;

 private:
  static constexpr NSColor white(double value) { return RGBA{value, value, value, 1}; }

  RGBA fixed_;
  ThemeShares themeShares_{};
};

/// "#rrggbb", "#rrggbbaa", or a theme colour: "labelColor", "secondaryLabelColor",
/// "separatorColor", "windowBackgroundColor", "controlAccentColor".
template <>
std::optional<NSColor> attributeFromText<NSColor>(std::string_view text);

}  // namespace platform
