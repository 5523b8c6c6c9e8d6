#include "platform/foundation/Print.h"

#include "platform/Runtime.h"

namespace platform {

void print(std::string_view line) {
  Runtime::current().desktop().standardOutput.print(line);
}

}  // namespace platform
