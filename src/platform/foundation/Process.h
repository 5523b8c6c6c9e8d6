#pragma once

#include <string_view>

namespace platform {

/// Writes `line` and a line feed to the application's standard output.
void print(std::string_view line);

/// Ends the process with `what` on standard error: the program itself is wrong, not the world.
[[noreturn]] void programmingError(std::string_view what);

/// Whether the running system is at least that version. It is the system that counts, not the one
/// the program was built for.
[[nodiscard]] bool isOperatingSystemAtLeastVersion(int major, int minor, int patch);

}  // namespace platform
