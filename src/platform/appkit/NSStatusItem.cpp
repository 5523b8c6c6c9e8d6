#include "platform/appkit/NSStatusItem.h"

#include "platform/Runtime.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSRunLoop.h"

namespace platform {

NSStatusItem::NSStatusItem(double length) : length_(length) {
  port::StatusBar& statusBar = Runtime::current().desktop().statusBar;
  peer_ = statusBar.createStatusItem(*this);
  if (statusBar.itemsHaveButtons())
    button_ = std::make_shared<NSStatusBarButton>(static_cast<StatusButtonOwner&>(*this));
}

void NSStatusItem::statusItemClicked(NSEventType type) {
  if (!button_) return;
  NSApplication::sharedApplication().sendEvent({.type = type, .locationInWindow = {}},
                                               [this, type] { button_->click(type); });
}

void NSStatusItem::menuItemChosen(std::size_t index) {
  NSRunLoop::mainRunLoop().deliver([this, index] {
    if (openMenu_) openMenu_->performActionForItemAtIndex(index);
  });
}

void NSStatusItem::menuDidClose() {
  NSRunLoop::mainRunLoop().deliver([this] {
    if (!openMenu_) return;
    const std::shared_ptr<NSMenu> menu = openMenu_;
    if (const auto delegate = menu->delegate()) delegate->menuDidClose(*menu);
  });
}

void NSStatusItem::buttonImageDidChange(const NSImage* image) {
  peer_->setImage(image);
}

void NSStatusItem::buttonToolTipDidChange(const std::string& text) {
  peer_->setToolTip(text);
}

bool NSStatusItem::openAttachedMenu() {
  if (!menu_) return false;
  openMenu_ = menu_;
  peer_->openMenu(*openMenu_);
  return true;
}

NSStatusBar& NSStatusBar::systemStatusBar() {
  return *Runtime::current().instance<NSStatusBar>();
}

std::shared_ptr<NSStatusItem> NSStatusBar::statusItemWithLength(double length) {
  return std::make_shared<NSStatusItem>(length);
}

}  // namespace platform
