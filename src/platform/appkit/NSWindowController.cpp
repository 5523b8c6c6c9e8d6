#include "platform/appkit/NSWindowController.h"

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
  constexpr std::uint16_t kEscape = 53;
  constexpr std::uint32_t kModifiers = NSEventModifierFlags::Command |
                                       NSEventModifierFlags::Option |
                                       NSEventModifierFlags::Control | NSEventModifierFlags::Shift;
  if (event.keyCode == kEscape && (event.modifierFlags & kModifiers) == 0) close();
}

}  // namespace platform
