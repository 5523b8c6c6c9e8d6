#include "platform/appkit/NSWindowController.h"

#include "platform/carbon/KeyCodes.h"
#include "platform/foundation/Process.h"

namespace platform {

NSWindowController::~NSWindowController() {
  if (window_) window_->setDelegate(nullptr);
}

bool NSWindowController::initWithCoder(const NSCoder& coder) {
  return coder.read("title", title_);
}

const std::shared_ptr<NSWindow>& NSWindowController::window() {
  if (!window_ && loader_) loadWindow();
  return window_;
}

void NSWindowController::loadWindow() {
  window_ = std::make_shared<NSWindow>(NSWindowStyle::Titled);
  window_->setTitle(title_);
  window_->setDelegate(this);
  window_->setWindowController(std::static_pointer_cast<NSWindowController>(shared_from_this()));
  window_->setContentViewController(loader_());
  windowDidLoad();
}

void NSWindowController::showWindow(NSObject*) {
  if (!window()) programmingError("a window controller has no window to show");
  if (!window_->isVisible()) window_->show(port::PlacedByDesktop{});
  window_->makeKeyWindow();
}

void NSWindowController::keyDown(const NSEvent& event) {
  const bool isModified = (event.modifierFlags & NSEventModifierFlags::OfShortcuts) != 0;
  if (event.keyCode == kVK_Escape && !isModified) close();
}

}  // namespace platform
