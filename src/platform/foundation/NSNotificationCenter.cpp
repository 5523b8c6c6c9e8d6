#include "platform/foundation/NSNotificationCenter.h"

#include <algorithm>

#include "platform/Runtime.h"

namespace platform {

NSNotificationCenter& NSNotificationCenter::defaultCenter() {
  return *Runtime::current().instance<NSNotificationCenter>();
}

void NSNotificationCenter::addObserver(const std::shared_ptr<NSObject>& observer, SEL selector,
                                       std::string name, const NSObject* object) {
  registrations_.push_back({observer, std::move(selector), std::move(name), object});
}

void NSNotificationCenter::removeObserver(const NSObject& observer, std::string_view name,
                                          const NSObject* object) {
  for (Registration& entry : registrations_) {
    if (entry.observer.lock().get() != &observer || entry.name != name) continue;
    if (object == nullptr || entry.object == object) entry.removed = true;
  }
  forgetRemoved();
}

void NSNotificationCenter::postNotificationName(std::string name, const NSObject* object,
                                                std::optional<Dictionary> userInfo) {
  NSNotification notification(std::move(name), object, std::move(userInfo));
  ++posting_;
  std::size_t left = registrations_.size();
  for (auto entry = registrations_.begin(); left > 0; ++entry, --left) {
    if (entry->removed || entry->name != notification.name()) continue;
    if (entry->object != nullptr && entry->object != object) continue;
    if (const auto observer = entry->observer.lock()) {
      observer->performSelector(entry->selector, &notification);
    }
  }
  --posting_;
  forgetRemoved();
}

void NSNotificationCenter::forgetRemoved() {
  if (posting_ > 0) return;
  registrations_.remove_if(
      [](const Registration& entry) { return entry.removed || entry.observer.expired(); });
}

std::size_t NSNotificationCenter::observerCount(std::string_view name) const {
  return static_cast<std::size_t>(std::ranges::count_if(registrations_, [name](const auto& entry) {
    return entry.name == name && !entry.removed && !entry.observer.expired();
  }));
}

NSDistributedNotificationCenter& NSDistributedNotificationCenter::defaultCenter() {
  return *Runtime::current().instance<NSDistributedNotificationCenter>();
}

void NSDistributedNotificationCenter::postNotificationName(std::string_view name) {
  if (auto* service = Runtime::current().desktop().distributedNotifications) service->post(name);
}

}  // namespace platform
