#include "platform/appkit/NSStackView.h"

namespace platform {
namespace {

struct NumberRow {
  std::string_view attribute;
  double* value;
};

}  // namespace

std::shared_ptr<NSStackView> NSStackView::initWithCoder(const NSCoder& coder) {
  auto stack = std::make_shared<NSStackView>();
  return stack->decode(coder) ? stack : nullptr;
}

bool NSStackView::decode(const NSCoder& coder) {
  if (!NSView::decode(coder)) return false;
  const auto orientation = coder.attribute("orientation").value_or("vertical");
  if (orientation != "vertical" && orientation != "horizontal") return false;
  orientation_ = orientation == "vertical" ? Orientation::Vertical : Orientation::Horizontal;
  if (const auto text = coder.attribute("fills")) {
    const auto fills = attributeFromText<bool>(*text);
    if (!fills) return false;
    fills_ = *fills;
  }
  for (const NumberRow& row :
       {NumberRow{"spacing", &spacing_}, NumberRow{"top", &insets_.top},
        NumberRow{"left", &insets_.left}, NumberRow{"bottom", &insets_.bottom},
        NumberRow{"right", &insets_.right}}) {
    const auto text = coder.attribute(row.attribute);
    if (!text) continue;
    const auto number = attributeFromText<double>(*text);
    if (!number) return false;
    *row.value = *number;
  }
  return true;
}

std::shared_ptr<NSSeparator> NSSeparator::initWithCoder(const NSCoder& coder) {
  auto separator = std::make_shared<NSSeparator>();
  return separator->decode(coder) ? separator : nullptr;
}

}  // namespace platform
