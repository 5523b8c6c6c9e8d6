#include "platform/foundation/Process.h"

#include <cstdlib>
#include <iostream>

#include "platform/Runtime.h"

namespace platform {

void print(std::string_view line) {
  Runtime::current().desktop().standardOutput.print(line);
}

void programmingError(std::string_view what) {
  std::cerr << "calmdeck: programming error: " << what << std::endl;
  std::abort();
}

bool isOperatingSystemAtLeastVersion(int major, int minor, int patch) {
  return Runtime::current().desktop().systemVersion >= port::SystemVersion{major, minor, patch};
}

}  // namespace platform
