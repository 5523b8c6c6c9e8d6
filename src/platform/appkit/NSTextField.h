#pragma once

#include <string>

#include "platform/appkit/NSView.h"

namespace platform {

/// How prominent a text is; the desktop's own font in the matching size and weight.
enum class NSTextStyle { Body, Title, Headline, Caption };

/// What a label's text is, which decides how one that is too long is shown.
enum class NSTextContent {
  Text,      ///< wraps
  FilePath,  ///< an absolute path: elided in the middle, whole in a tool tip, with a small picture
             ///< of the file beside it where the file is a picture
  Copyable,  ///< wraps; the user can select it, to copy it
};

/// A label.
class NSTextField final : public NSView {
 public:
  [[nodiscard]] bool initWithCoder(const NSCoder& coder) override;
  [[nodiscard]] NSViewKind kind() const override { return NSViewKind::Label; }
  [[nodiscard]] const std::string& stringValue() const { return stringValue_; }
  void setStringValue(std::string text);
  [[nodiscard]] NSTextStyle textStyle() const { return textStyle_; }
  [[nodiscard]] NSTextContent content() const { return content_; }
  [[nodiscard]] const NSColor& textColor() const { return textColor_; }
  [[nodiscard]] NSAccessibilityRole accessibilityRole() const override {
    return NSAccessibilityRole::StaticText;
  }

 private:
  std::string stringValue_;
  NSTextStyle textStyle_ = NSTextStyle::Body;
  NSTextContent content_ = NSTextContent::Text;
  NSColor textColor_ = NSSystemColor::Label;
};

}  // namespace platform
