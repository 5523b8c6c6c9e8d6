#include "platform/appkit/NSStatusItem.h"

#include "platform/Runtime.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSRunLoop.h"

namespace platform {

// --- The menu ---

void NSMenu::addItemWithTitle(std::string title, SEL action, std::string_view) {
  items_.push_back(std::make_shared<NSMenuItem>(std::move(title), std::move(action)));
}

void NSMenu::performActionForItemAtIndex(std::size_t index) {
  if (index >= items_.size()) return;
  const std::shared_ptr<NSMenuItem> item = items_[index];
  NSApplication::sharedApplication().sendAction(item->action(), nullptr, item.get());
}

// --- The button ---

void NSStatusBarButton::setImage(std::shared_ptr<NSImage> image) {
  image_ = std::move(image);
  item_.peer().setImage(image_.get());
}

void NSStatusBarButton::setToolTip(const std::string& text) {
  item_.peer().setToolTip(text);
}

void NSStatusBarButton::performClick(NSObject*) {
  if (!item_.openAttachedMenu()) sendAction();
}

void NSStatusBarButton::click(NSEventType type) {
  if (item_.openAttachedMenu()) return;
  if ((sendsActionOn_ & maskOf(type)) != 0) sendAction();
}

port::StatusItemPeer& NSStatusBarButton::statusItemPeer() const {
  return item_.peer();
}

// --- The item ---

NSStatusItem::NSStatusItem(double length) : length_(length) {
  port::StatusBar& statusBar = Runtime::current().desktop().statusBar;
  peer_ = statusBar.createStatusItem(*this);
  if (statusBar.itemsHaveButtons()) button_ = std::make_shared<NSStatusBarButton>(*this);
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
