#include "platform/appkit/NSPopover.h"

#include "platform/appkit/NSStatusItem.h"
#include "platform/foundation/Process.h"

namespace platform {

NSPopover::NSPopover() : window_(std::make_shared<NSWindow>(NSWindowStyle::Popover)) {
  window_->setDelegate(this);
}

// Every status item of the desktops so far has one place and no parts, so the rectangle inside the
// button and the edge leave the desktop no choice to make.
void NSPopover::showRelativeToRect(NSRect, NSView& view, NSRectEdge) {
  const auto* button = dynamic_cast<NSStatusBarButton*>(&view);
  if (button == nullptr) programmingError("a popover was shown at a view that is no status button");
  if (!controller_) programmingError("a popover was shown without content");
  if (window_->contentViewController() != controller_) {
    window_->setContentViewController(controller_);
  }
  window_->show(port::PlacedAtStatusItem{&button->statusItemPeer()});
}

void NSPopover::userActedElsewhere() {
  if (behavior_ == NSPopoverBehavior::Transient) performClose(nullptr);
}

}  // namespace platform
