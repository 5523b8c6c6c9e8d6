#include "platform/appkit/NSControl.h"

#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSCoder.h"

namespace platform {

bool NSControl::decode(const NSCoder& coder) {
  if (!NSView::decode(coder)) return false;
  if (const auto action = coder.attribute("action")) action_ = *action;
  return true;
}

void NSControl::mouseUp(const NSEvent&) {
  if (action_.empty()) return;
  NSApplication::sharedApplication().sendAction(action_, target_.lock().get(), this);
}

}  // namespace platform
