#include "platform/foundation/NSProcessInfo.h"

#include "platform/Runtime.h"

namespace platform {

bool isOperatingSystemAtLeastVersion(int major, int minor, int patch) {
  return Runtime::current().desktop().systemVersion >= port::SystemVersion{major, minor, patch};
}

}  // namespace platform
