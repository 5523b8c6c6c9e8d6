#include "platform/appkit/NSControl.h"

#include "platform/appkit/NSApplication.h"

namespace platform {

bool NSControl::initWithCoder(const NSCoder& coder) {
  return NSView::initWithCoder(coder) && coder.read("action", action_);
}

void NSControl::sendAction() {
  if (action_.empty()) return;
  NSApplication::sharedApplication().sendAction(action_, target_.lock().get(), this);
}

bool NSButton::initWithCoder(const NSCoder& coder) {
  return NSControl::initWithCoder(coder) && coder.read("title", title_);
}

void NSButton::setTitle(std::string title) {
  title_ = std::move(title);
  didChange(ViewChange::Content);
}

void NSButton::setState(NSControlStateValue state) {
  if (kind_ != NSViewKind::Checkbox || state == state_) return;
  state_ = state;
  didChange(ViewChange::Content);
}

void NSButton::mouseUp(const NSEvent& event) {
  setState(state_ == NSControlStateValue::On ? NSControlStateValue::Off : NSControlStateValue::On);
  NSControl::mouseUp(event);
}

NSAccessibilityRole NSButton::accessibilityRole() const {
  return kind_ == NSViewKind::Checkbox ? NSAccessibilityRole::CheckBox
                                       : NSAccessibilityRole::Button;
}

std::optional<bool> NSButton::accessibilityValue() const {
  if (kind_ != NSViewKind::Checkbox) return std::nullopt;
  return state_ == NSControlStateValue::On;
}

bool NSBox::initWithCoder(const NSCoder& coder) {
  return NSControl::initWithCoder(coder) && coder.read("borderColor", borderColor_);
}

void NSBox::setBorderColor(NSColor color) {
  if (color == borderColor_) return;
  borderColor_ = color;
  didChange(ViewChange::Content);
}

}  // namespace platform
