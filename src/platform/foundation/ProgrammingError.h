#pragma once

#include <string_view>

namespace platform {

/// Ends the process with `what` on standard error: the program itself is wrong, not the world.
[[noreturn]] void programmingError(std::string_view what);

}  // namespace platform
