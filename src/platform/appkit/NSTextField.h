#pragma once

#include <string>

#include "platform/appkit/NSView.h"

namespace platform {

/// How prominent a text is; the desktop's own font in the matching size and weight.
enum class NSTextStyle { Body, Title, Headline, Caption };

/// A label.
class NSTextField final : public NSView {
 public:
  [[nodiscard]] static std::shared_ptr<NSTextField> initWithCoder(const NSCoder& coder);

  [[nodiscard]] NSViewKind kind() const override { return NSViewKind::Label; }
  [[nodiscard]] const std::string& stringValue() const { return stringValue_; }
  void setStringValue(std::string text);
  [[nodiscard]] NSTextStyle textStyle() const { return textStyle_; }
  [[nodiscard]] const NSColor& textColor() const { return textColor_; }
  [[nodiscard]] NSAccessibilityRole accessibilityRole() const override {
    return NSAccessibilityRole::StaticText;
  }

 protected:
  [[nodiscard]] bool decode(const NSCoder& coder) override;

 private:
  std::string stringValue_;
  NSTextStyle textStyle_ = NSTextStyle::Body;
  NSColor textColor_ = NSSystemColor::Label;
};

}  // namespace platform
