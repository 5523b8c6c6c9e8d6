#include "platform/foundation/NSUserDefaults.h"

#include "platform/Runtime.h"
#include "platform/foundation/Process.h"

namespace platform {
namespace {

port::DefaultsStore& store() {
  return Runtime::current().desktop().defaults;
}

port::ForeignPreferences* preferences(std::string_view user, std::string_view host) {
  if (user != kCFPreferencesCurrentUser || host != kCFPreferencesCurrentHost) {
    programmingError("preferences of another user or host were asked for");
  }
  return Runtime::current().desktop().foreignPreferences;
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

void CFPreferencesSetValue(std::string_view key, std::optional<Value> value,
                           std::string_view application, std::string_view user,
                           std::string_view host) {
  if (auto* foreign = preferences(user, host)) foreign->set(key, std::move(value), application);
}

bool CFPreferencesSynchronize(std::string_view application, std::string_view user,
                              std::string_view host) {
  auto* foreign = preferences(user, host);
  return foreign != nullptr && foreign->synchronize(application);
}

}  // namespace platform
