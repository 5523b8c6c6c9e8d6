#include "platform/foundation/NSUserDefaults.h"

#include "platform/Runtime.h"

namespace platform {
namespace {

port::DefaultsStore& store() {
  return Runtime::current().desktop().defaults;
}

}  // namespace

NSUserDefaults& NSUserDefaults::standardUserDefaults() {
  return *Runtime::current().instance<NSUserDefaults>();
}

std::optional<Value> NSUserDefaults::objectForKey(std::string_view key) const {
  return store().object(key);
}

void NSUserDefaults::setObject(Value value, std::string_view key) {
  store().set(key, std::move(value));
}

void NSUserDefaults::removeObjectForKey(std::string_view key) {
  store().remove(key);
}

}  // namespace platform
