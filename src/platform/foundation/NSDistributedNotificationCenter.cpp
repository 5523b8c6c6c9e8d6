#include "platform/foundation/NSDistributedNotificationCenter.h"

#include "platform/Runtime.h"

namespace platform {

NSDistributedNotificationCenter& NSDistributedNotificationCenter::defaultCenter() {
  return *Runtime::current().instance<NSDistributedNotificationCenter>();
}

void NSDistributedNotificationCenter::postNotificationName(std::string_view name) {
  if (auto* service = Runtime::current().desktop().distributedNotifications) service->post(name);
}

}  // namespace platform
