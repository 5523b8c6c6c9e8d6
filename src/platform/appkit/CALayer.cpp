#include "platform/appkit/CALayer.h"

#include "platform/appkit/NSAnimationContext.h"

namespace platform {

template <typename T>
void CALayer::set(Animatable<T>& property, T value) {
  property.set(std::move(value), NSAnimationContext::implicitTiming());
  changed_();
}

void CALayer::setBackgroundColor(NSColor color) {
  set(backgroundColor_, color);
}
void CALayer::setBorderWidth(double width) {
  set(borderWidth_, width);
}
void CALayer::setBorderColor(NSColor color) {
  set(borderColor_, color);
}
void CALayer::setCornerRadius(double radius) {
  set(cornerRadius_, radius);
}

void CALayer::setMasksToBounds(bool masks) {
  masksToBounds_ = masks;
  changed_();
}

CALayer::Presentation CALayer::presentation(MonotonicTime time) const {
  return {backgroundColor_.presentation(time), borderWidth_.presentation(time),
          borderColor_.presentation(time), cornerRadius_.presentation(time)};
}

bool CALayer::isAnimating(MonotonicTime time) const {
  return backgroundColor_.isAnimating(time) || borderWidth_.isAnimating(time) ||
         borderColor_.isAnimating(time) || cornerRadius_.isAnimating(time);
}

}  // namespace platform
