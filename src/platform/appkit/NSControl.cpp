#include "platform/appkit/NSControl.h"

#include "platform/appkit/NSApplication.h"

namespace platform {

bool NSControl::initWithCoder(const NSCoder& coder) {
  return NSView::initWithCoder(coder) && coder.read("action", action_);
}

void NSControl::mouseUp(const NSEvent&) {
  if (action_.empty()) return;
  NSApplication::sharedApplication().sendAction(action_, target_.lock().get(), this);
}

}  // namespace platform
