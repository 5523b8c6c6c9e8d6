#pragma once

#include <memory>

#include "platform/appkit/NSControl.h"

namespace platform {

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
