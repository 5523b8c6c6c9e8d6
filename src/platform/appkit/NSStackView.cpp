#include "platform/appkit/NSStackView.h"

namespace platform {

template <>
std::optional<NSStackView::Orientation> attributeFromText<NSStackView::Orientation>(
    std::string_view text) {
  static constexpr NamedValue<NSStackView::Orientation> orientations[] = {
      {"vertical", NSStackView::Orientation::Vertical},
      {"horizontal", NSStackView::Orientation::Horizontal},
  };
  return valueNamed(text, orientations);
}

bool NSStackView::initWithCoder(const NSCoder& coder) {
  return NSView::initWithCoder(coder) && coder.read("orientation", orientation_) &&
         coder.read("fills", fills_) && coder.read("spacing", spacing_) &&
         coder.read("top", insets_.top) && coder.read("left", insets_.left) &&
         coder.read("bottom", insets_.bottom) && coder.read("right", insets_.right);
}

}  // namespace platform
