#include "platform/foundation/CFPreferences.h"

#include "platform/Runtime.h"
#include "platform/foundation/ProgrammingError.h"

namespace platform {
namespace {

port::ForeignPreferences* preferences(std::string_view user, std::string_view host) {
  if (user != kCFPreferencesCurrentUser || host != kCFPreferencesCurrentHost) {
    programmingError("preferences of another user or host were asked for");
  }
  return Runtime::current().desktop().foreignPreferences;
}

}  // namespace

void CFPreferencesSetValue(std::string_view key, std::optional<Value> value,
                           std::string_view application, std::string_view user,
                           std::string_view host) {
  if (auto* store = preferences(user, host)) store->set(key, std::move(value), application);
}

bool CFPreferencesSynchronize(std::string_view application, std::string_view user,
                              std::string_view host) {
  auto* store = preferences(user, host);
  return store != nullptr && store->synchronize(application);
}

}  // namespace platform
