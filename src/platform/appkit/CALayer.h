#pragma once

#include <functional>
#include <utility>

#include "platform/appkit/NSAnimationContext.h"
#include "platform/appkit/NSColor.h"
#include "platform/foundation/Geometry.h"

namespace platform {

/// The look of a view: a rounded rectangle with a fill and a border inside its edge, the size of
/// the view. Owned by its view. Border width and colour, background and radius animate when they
/// are set inside an animation group that allows implicit animation.
class CALayer {
 public:
  /// `changed` is called after each setter.
  explicit CALayer(std::function<void()> changed) : changed_(std::move(changed)) {}
  CALayer(const CALayer&) = delete;
  CALayer& operator=(const CALayer&) = delete;

  [[nodiscard]] const NSColor& backgroundColor() const { return backgroundColor_.model(); }
  void setBackgroundColor(NSColor color) { set(backgroundColor_, color); }
  /// Points.
  [[nodiscard]] double borderWidth() const { return borderWidth_.model(); }
  void setBorderWidth(double width) { set(borderWidth_, width); }
  [[nodiscard]] const NSColor& borderColor() const { return borderColor_.model(); }
  void setBorderColor(NSColor color) { set(borderColor_, color); }
  /// Points.
  [[nodiscard]] double cornerRadius() const { return cornerRadius_.model(); }
  void setCornerRadius(double radius) { set(cornerRadius_, radius); }
  [[nodiscard]] bool masksToBounds() const { return masksToBounds_; }
  void setMasksToBounds(bool masks) {
    masksToBounds_ = masks;
    changed_();
  }

  /// What is on the screen at one time.
  struct Presentation {
    NSColor backgroundColor;
    double borderWidth = 0;
    NSColor borderColor;
    double cornerRadius = 0;
  };
  [[nodiscard]] Presentation presentation(MonotonicTime time) const {
    return {backgroundColor_.presentation(time), borderWidth_.presentation(time),
            borderColor_.presentation(time), cornerRadius_.presentation(time)};
  }
  [[nodiscard]] bool isAnimating(MonotonicTime time) const {
    return backgroundColor_.isAnimating(time) || borderWidth_.isAnimating(time) ||
           borderColor_.isAnimating(time) || cornerRadius_.isAnimating(time);
  }

 private:
  template <typename T>
  void set(Animatable<T>& property, T value) {
    property.set(std::move(value), NSAnimationContext::implicitTiming());
    changed_();
  }

  // The platform's defaults: no fill, an opaque black border of no width.
  Animatable<NSColor> backgroundColor_{NSColor(NSColor::RGBA{0, 0, 0, 0})};
  Animatable<double> borderWidth_{0.0};
  Animatable<NSColor> borderColor_{NSColor::blackColor()};
  Animatable<double> cornerRadius_{0.0};
  bool masksToBounds_ = false;
  std::function<void()> changed_;
};

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
