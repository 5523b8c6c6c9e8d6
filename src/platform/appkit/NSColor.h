#pragma once

#include <optional>
#include <string_view>
#include <variant>

#include "platform/foundation/AttributeText.h"

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

/// A colour: fixed red, green, blue and alpha from 0 to 1, or one of the theme's. A value.
class NSColor {
 public:
  using RGBA = NSColorComponents;

  /// Opaque black.
  constexpr NSColor() : storage_(RGBA{}) {}
  constexpr NSColor(RGBA rgba) : storage_(rgba) {}
  constexpr NSColor(NSSystemColor color) : storage_(color) {}

  // The platform's named colours; the greys by its white values.
  [[nodiscard]] static constexpr NSColor blackColor() { return white(0); }
  [[nodiscard]] static constexpr NSColor whiteColor() { return white(1); }
  [[nodiscard]] static constexpr NSColor lightGrayColor() { return white(2.0 / 3); }
  [[nodiscard]] static constexpr NSColor grayColor() { return white(0.5); }
  [[nodiscard]] static constexpr NSColor blueColor() { return RGBA{0, 0, 1, 1}; }

  [[nodiscard]] constexpr NSColor colorWithAlphaComponent(double alpha) const {
    NSColor color = *this;
    if (RGBA* rgba = std::get_if<RGBA>(&color.storage_)) rgba->alpha = alpha;
    return color;
  }

  /// The fixed components, or none for a colour of the theme's.
  [[nodiscard]] std::optional<RGBA> rgba() const {
    if (const RGBA* rgba = std::get_if<RGBA>(&storage_)) return *rgba;
    return std::nullopt;
  }
  [[nodiscard]] std::optional<NSSystemColor> systemColor() const {
    if (const auto* color = std::get_if<NSSystemColor>(&storage_)) return *color;
    return std::nullopt;
  }

  bool operator==(const NSColor&) const = default;

 private:
  static constexpr NSColor white(double value) { return RGBA{value, value, value, 1}; }

  std::variant<RGBA, NSSystemColor> storage_;
};

/// "#rrggbb", "#rrggbbaa", or a theme colour: "labelColor", "secondaryLabelColor",
/// "separatorColor", "windowBackgroundColor", "controlAccentColor".
template <>
std::optional<NSColor> attributeFromText<NSColor>(std::string_view text);

}  // namespace platform
