#include "platform/foundation/ClassRegistry.h"

#include "platform/Runtime.h"

namespace platform {

ClassRegistry& ClassRegistry::shared() {
  return *Runtime::current().instance<ClassRegistry>();
}

ClassRegistry::Maker ClassRegistry::maker(std::string_view className) const {
  const auto found = makers_.find(className);
  return found == makers_.end() ? nullptr : found->second;
}

}  // namespace platform
