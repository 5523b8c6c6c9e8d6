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
  const bool wasShown = isShown();
  if (window_->contentView() != controller_->view()) window_->setContentView(controller_->view());
  if (!wasShown) controller_->viewWillAppear();
  window_->show(port::PlacedAtStatusItem{&button->statusItemPeer()});
  if (!wasShown) controller_->viewDidAppear();
}

void NSPopover::performClose(NSObject*) {
  if (!isShown()) return;
  controller_->viewWillDisappear();
  window_->orderOut(nullptr);
  controller_->viewDidDisappear();
}

void NSPopover::windowShouldClose() {
  performClose(nullptr);
}

void NSPopover::userActedElsewhere() {
  if (behavior_ == NSPopoverBehavior::Transient) performClose(nullptr);
}

}  // namespace platform
