#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/appkit/NSView.h"

namespace platform {

/// A view that sends its action when it is pressed and let go.
class NSControl : public NSView {
 public:
  [[nodiscard]] const SEL& action() const { return action_; }
  void setAction(SEL action) { action_ = std::move(action); }
  /// Null, as at first: the action travels the responder chain.
  void setTarget(const std::shared_ptr<NSObject>& target) { target_ = target; }

  [[nodiscard]] bool initWithCoder(const NSCoder& coder) override;
  void mouseUp(const NSEvent& /*event*/) override { sendAction(); }

 protected:
  void sendAction();

 private:
  SEL action_;
  std::weak_ptr<NSObject> target_;
};

/// Whether a control with a state is on, with the platform's numbers.
enum class NSControlStateValue { Off = 0, On = 1 };

/// A push button or a checkbox. A click, a key on it or assistive technology comes as a press and a
/// release; the release of a checkbox flips its state. Then the action is sent.
class NSButton : public NSControl {
 public:
  NSButton() = default;

  [[nodiscard]] bool initWithCoder(const NSCoder& coder) override;
  [[nodiscard]] NSViewKind kind() const override { return kind_; }
  [[nodiscard]] const std::string& title() const { return title_; }
  void setTitle(std::string title);
  /// Always Off for a push button.
  [[nodiscard]] NSControlStateValue state() const { return state_; }
  /// Does not send the action.
  void setState(NSControlStateValue state);

  void mouseUp(const NSEvent& event) override;
  [[nodiscard]] bool acceptsFirstResponder() const override { return true; }
  [[nodiscard]] NSAccessibilityRole accessibilityRole() const override;
  [[nodiscard]] std::optional<bool> accessibilityValue() const override;

 protected:
  explicit NSButton(NSViewKind kind) : kind_(kind) {}

 private:
  NSViewKind kind_ = NSViewKind::Button;
  std::string title_;
  NSControlStateValue state_ = NSControlStateValue::Off;
};

/// A button that is a checkbox.
class NSCheckbox final : public NSButton {
 public:
  NSCheckbox() : NSButton(NSViewKind::Checkbox) {}
};

/// A frame around a view, with rounded corners. Holds one subview. Pressed anywhere, it sends its
/// action, if it has one; the keyboard does not reach it.
class NSBox final : public NSControl {
 public:
  [[nodiscard]] bool initWithCoder(const NSCoder& coder) override;
  [[nodiscard]] NSViewKind kind() const override { return NSViewKind::Box; }
  [[nodiscard]] const NSColor& borderColor() const { return borderColor_; }
  void setBorderColor(NSColor color);
  [[nodiscard]] NSAccessibilityRole accessibilityRole() const override {
    return NSAccessibilityRole::Group;
  }

 private:
  NSColor borderColor_ = NSSystemColor::Separator;
};

}  // namespace platform
