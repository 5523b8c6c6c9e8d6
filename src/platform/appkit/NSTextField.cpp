#include "platform/appkit/NSTextField.h"

namespace platform {

template <>
std::optional<NSTextStyle> attributeFromText<NSTextStyle>(std::string_view text) {
  static constexpr NamedValue<NSTextStyle> styles[] = {
      {"body", NSTextStyle::Body},
      {"title", NSTextStyle::Title},
      {"headline", NSTextStyle::Headline},
      {"caption", NSTextStyle::Caption},
  };
  return valueNamed(text, styles);
}

template <>
std::optional<NSTextContent> attributeFromText<NSTextContent>(std::string_view text) {
  static constexpr NamedValue<NSTextContent> contents[] = {
      {"text", NSTextContent::Text},
      {"filePath", NSTextContent::FilePath},
      {"copyable", NSTextContent::Copyable},
  };
  return valueNamed(text, contents);
}

bool NSTextField::initWithCoder(const NSCoder& coder) {
  return NSView::initWithCoder(coder) && coder.read("text", stringValue_) &&
         coder.read("textStyle", textStyle_) && coder.read("content", content_) &&
         coder.read("textColor", textColor_);
}

void NSTextField::setStringValue(std::string text) {
  stringValue_ = std::move(text);
  didChange(ViewChange::Content);
}

}  // namespace platform
