#include "platform/appkit/NSBox.h"

namespace platform {

std::shared_ptr<NSBox> NSBox::initWithCoder(const NSCoder& coder) {
  auto box = std::make_shared<NSBox>();
  return box->decode(coder) ? box : nullptr;
}

bool NSBox::decode(const NSCoder& coder) {
  if (!NSControl::decode(coder)) return false;
  if (const auto text = coder.attribute("borderColor")) {
    const auto color = attributeFromText<NSColor>(*text);
    if (!color) return false;
    borderColor_ = *color;
  }
  return true;
}

void NSBox::setBorderColor(NSColor color) {
  if (color == borderColor_) return;
  borderColor_ = color;
  didChange(ViewChange::Content);
}

}  // namespace platform
