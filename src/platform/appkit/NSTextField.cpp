#include "platform/appkit/NSTextField.h"

#include <algorithm>

namespace platform {
namespace {

struct StyleRow {
  std::string_view name;
  NSTextStyle style;
};

constexpr StyleRow kStyles[] = {
    {"body", NSTextStyle::Body},
    {"title", NSTextStyle::Title},
    {"headline", NSTextStyle::Headline},
    {"caption", NSTextStyle::Caption},
};

struct ContentRow {
  std::string_view name;
  NSTextContent content;
};

constexpr ContentRow kContents[] = {
    {"text", NSTextContent::Text},
    {"filePath", NSTextContent::FilePath},
    {"copyable", NSTextContent::Copyable},
};

}  // namespace

std::shared_ptr<NSTextField> NSTextField::initWithCoder(const NSCoder& coder) {
  auto field = std::make_shared<NSTextField>();
  return field->decode(coder) ? field : nullptr;
}

bool NSTextField::decode(const NSCoder& coder) {
  if (!NSView::decode(coder)) return false;
  if (const auto text = coder.attribute("text")) stringValue_ = *text;
  if (const auto name = coder.attribute("textStyle")) {
    const auto* row = std::ranges::find(kStyles, *name, &StyleRow::name);
    if (row == std::end(kStyles)) return false;
    textStyle_ = row->style;
  }
  if (const auto name = coder.attribute("content")) {
    const auto* row = std::ranges::find(kContents, *name, &ContentRow::name);
    if (row == std::end(kContents)) return false;
    content_ = row->content;
  }
  if (const auto text = coder.attribute("textColor")) {
    const auto color = attributeFromText<NSColor>(*text);
    if (!color) return false;
    textColor_ = *color;
  }
  return true;
}

void NSTextField::setStringValue(std::string text) {
  stringValue_ = std::move(text);
  didChange(ViewChange::Content);
}

}  // namespace platform
