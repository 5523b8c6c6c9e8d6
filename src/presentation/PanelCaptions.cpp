#include "presentation/PanelCaptions.h"

#include <algorithm>

#include "platform/foundation/NSBundle.h"

namespace presentation {

using platform::NSLocalizedString;

void PanelCaptions::show(const Row& row, const std::string& text) {
  if (row.line->stringValue() == text && row.toggle->accessibilityHelp() == text) return;
  row.line->setStringValue(text);
  row.toggle->setAccessibilityHelp(text);
}

std::string PanelCaptions::textOf(const Row& row) {
  if (!row.capability) return row.usual;
  const auto obstacle = platform::NSWorkspace::sharedWorkspace().obstacleTo(*row.capability);
  if (!obstacle) return row.usual;
  return platform::NSLocalizedFormat("Not on this desktop: %s", *obstacle);
}

void PanelCaptions::refresh() const {
  for (const Row& row : features_) show(row, textOf(row));
  if (!master_) return;
  const bool isAnyChosen =
      std::ranges::any_of(features_, [](const Row& row) { return row.toggle->isOn(); });
  show(*master_, isAnyChosen ? master_->usual : NSLocalizedString("Nothing is switched on below"));
}

}  // namespace presentation
