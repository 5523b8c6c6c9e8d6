#include "platform/appkit/NSBox.h"

namespace platform {

bool NSBox::initWithCoder(const NSCoder& coder) {
  return NSControl::initWithCoder(coder) && coder.read("borderColor", borderColor_);
}

void NSBox::setBorderColor(NSColor color) {
  if (color == borderColor_) return;
  borderColor_ = color;
  didChange(ViewChange::Content);
}

}  // namespace platform
