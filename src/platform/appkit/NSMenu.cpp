#include "platform/appkit/NSMenu.h"

#include "platform/appkit/NSApplication.h"

namespace platform {

NSMenuItem::NSMenuItem(std::string title, SEL action, std::string keyEquivalent)
    : title_(std::move(title)),
      action_(std::move(action)),
      keyEquivalent_(std::move(keyEquivalent)) {}

std::shared_ptr<NSMenuItem> NSMenu::addItemWithTitle(std::string title, SEL action,
                                                     std::string keyEquivalent) {
  return items_.emplace_back(
      std::make_shared<NSMenuItem>(std::move(title), std::move(action), std::move(keyEquivalent)));
}

void NSMenu::update() {
  for (const auto& item : items_) {
    item->setEnabled(NSApplication::sharedApplication().targetForAction(
                         item->action(), item->target().get()) != nullptr);
  }
}

void NSMenu::performActionForItemAtIndex(std::size_t index) {
  if (index >= items_.size() || !items_[index]->isEnabled()) return;
  const std::shared_ptr<NSMenuItem> item = items_[index];
  NSApplication::sharedApplication().sendAction(item->action(), item->target().get(), item.get());
}

}  // namespace platform
