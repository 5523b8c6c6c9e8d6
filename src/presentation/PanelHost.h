#pragma once

#include <memory>

#include "platform/appkit/NSPopover.h"
#include "platform/appkit/NSStatusItem.h"

namespace presentation {

/// What the panel needs of the application that shows it.
class PanelHost {
 public:
  virtual ~PanelHost() = default;
  /// The button whose image shows the mode; null when there is none.
  [[nodiscard]] virtual std::shared_ptr<platform::NSStatusBarButton> statusButton() = 0;
  /// The popover that the panel is shown in.
  [[nodiscard]] virtual platform::NSPopover& panelPopover() = 0;
};

}  // namespace presentation
