#pragma once

#include <memory>

#include "platform/appkit/NSView.h"
#include "platform/appkit/NSViewController.h"
#include "platform/appkit/NSWindow.h"

namespace platform {

/// When a popover closes by itself, with the platform's numbers.
enum class NSPopoverBehavior {
  ApplicationDefined = 0,  ///< never
  Transient = 1,           ///< when the user acts elsewhere
};

/// A view controller's view in a window that hangs on another view and is there while it is needed.
class NSPopover final : public NSObject, private NSWindowDelegate {
 public:
  NSPopover();

  [[nodiscard]] const std::shared_ptr<NSViewController>& contentViewController() const {
    return controller_;
  }
  void setContentViewController(std::shared_ptr<NSViewController> controller) {
    controller_ = std::move(controller);
  }
  [[nodiscard]] NSPopoverBehavior behavior() const { return behavior_; }
  void setBehavior(NSPopoverBehavior behavior) { behavior_ = behavior; }
  [[nodiscard]] bool isShown() const { return window_->isVisible(); }

  /// Shows the content at `view`, on the side that `preferredEdge` names where there is room.
  /// `view` must be a status button and there must be a content view controller. Shown already: it
  /// stays and is placed anew.
  void showRelativeToRect(NSRect rect, NSView& view, NSRectEdge preferredEdge);
  /// Closes as if the user had asked for it. Closed already: does nothing.
  void performClose(NSObject* /*sender*/) { window_->orderOut(nullptr); }

 private:
  void windowShouldClose() override { performClose(nullptr); }
  void userActedElsewhere() override;

  std::shared_ptr<NSWindow> window_;
  std::shared_ptr<NSViewController> controller_;
  NSPopoverBehavior behavior_ = NSPopoverBehavior::ApplicationDefined;
};

}  // namespace platform
