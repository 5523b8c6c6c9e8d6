#include "platform/appkit/NSMenu.h"

#include "platform/appkit/NSApplication.h"

namespace platform {

void NSMenu::addItemWithTitle(std::string title, SEL action, std::string_view) {
  items_.push_back(std::make_shared<NSMenuItem>(std::move(title), std::move(action)));
}

void NSMenu::performActionForItemAtIndex(std::size_t index) {
  if (index >= items_.size()) return;
  const std::shared_ptr<NSMenuItem> item = items_[index];
  NSApplication::sharedApplication().sendAction(item->action(), nullptr, item.get());
}

}  // namespace platform
