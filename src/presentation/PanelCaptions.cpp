#include "presentation/PanelCaptions.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/NSBundle.h"

namespace presentation {

using platform::NSLocalizedString;

PanelCaptions::Caption PanelCaptions::captionOf(Row row) {
  std::string usual = row.line->stringValue();
  return {std::move(row), std::move(usual)};
}

void PanelCaptions::setMaster(Row row) {
  master_ = captionOf(std::move(row));
}

void PanelCaptions::add(Row row) {
  features_.push_back(captionOf(std::move(row)));
}

void PanelCaptions::show(const Row& row, const std::string& text) {
  if (row.line->stringValue() == text && row.toggle->accessibilityHelp() == text) return;
  row.line->setStringValue(text);
  row.toggle->setAccessibilityHelp(text);
}

std::string PanelCaptions::textOf(const Caption& caption) {
  if (!caption.row.capability) return caption.usual;
  const auto obstacle =
      platform::NSWorkspace::sharedWorkspace().obstacleTo(*caption.row.capability);
  if (!obstacle) return caption.usual;
  return platform::NSLocalizedFormat("Not on this desktop: %s", *obstacle);
}

void PanelCaptions::refresh() const {
  for (const Caption& caption : features_) show(caption.row, textOf(caption));
  if (!master_) return;
  const bool isAnyChosen = std::ranges::any_of(
      features_, [](const Caption& caption) { return caption.row.toggle->isOn(); });
  show(master_->row,
       isAnyChosen ? master_->usual : NSLocalizedString("Nothing is switched on below"));
}

}  // namespace presentation
