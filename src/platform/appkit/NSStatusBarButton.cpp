#include "platform/appkit/NSStatusBarButton.h"

#include "platform/appkit/NSApplication.h"

namespace platform {

void NSStatusBarButton::setImage(std::shared_ptr<NSImage> image) {
  image_ = std::move(image);
  owner_->buttonImageDidChange(image_.get());
}

void NSStatusBarButton::setToolTip(std::string text) {
  toolTip_ = std::move(text);
  owner_->buttonToolTipDidChange(toolTip_);
}

void NSStatusBarButton::performClick(NSObject*) {
  if (!owner_->openAttachedMenu()) sendAction();
}

void NSStatusBarButton::click(NSEventType type) {
  if (owner_->openAttachedMenu()) return;
  if ((sendsActionOn_ & maskOf(type)) != 0) sendAction();
}

void NSStatusBarButton::sendAction() {
  if (action_.empty()) return;
  NSApplication::sharedApplication().sendAction(action_, target_.lock().get(), this);
}

}  // namespace platform
