#include "platform/foundation/ProgrammingError.h"

#include <cstdlib>
#include <iostream>

namespace platform {

void programmingError(std::string_view what) {
  std::cerr << "calmdeck: programming error: " << what << std::endl;
  std::abort();
}

}  // namespace platform
