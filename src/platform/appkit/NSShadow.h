#pragma once

#include "platform/appkit/NSColor.h"
#include "platform/foundation/Geometry.h"

namespace platform {

/// A blurred copy of a shape's outline, drawn behind it. A value.
class NSShadow {
 public:
  [[nodiscard]] const NSColor& shadowColor() const { return color_; }
  void setShadowColor(NSColor color) { color_ = color; }
  /// Points; y up, so a shadow below its shape has a negative height.
  [[nodiscard]] NSSize shadowOffset() const { return offset_; }
  void setShadowOffset(NSSize offset) { offset_ = offset; }
  /// Points.
  [[nodiscard]] double shadowBlurRadius() const { return blurRadius_; }
  void setShadowBlurRadius(double radius) { blurRadius_ = radius; }

  bool operator==(const NSShadow&) const = default;

 private:
  NSColor color_ = NSColor::blackColor();
  NSSize offset_;
  double blurRadius_ = 0;
};

}  // namespace platform
