#include "platform/appkit/NSButton.h"

#include "platform/appkit/NSApplication.h"

namespace platform {

std::shared_ptr<NSButton> NSButton::initWithCoder(const NSCoder& coder) {
  auto button = std::make_shared<NSButton>();
  return button->decode(coder) ? button : nullptr;
}

std::shared_ptr<NSButton> NSButton::checkboxWithCoder(const NSCoder& coder) {
  auto button = std::make_shared<NSButton>();
  button->kind_ = NSViewKind::Checkbox;
  return button->decode(coder) ? button : nullptr;
}

bool NSButton::decode(const NSCoder& coder) {
  if (!NSControl::decode(coder)) return false;
  if (const auto title = coder.attribute("title")) title_ = *title;
  return true;
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

}  // namespace platform
