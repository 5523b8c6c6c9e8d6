#pragma once

#include <string_view>

namespace platform {

/// Writes `line` and a line feed to the application's standard output.
void print(std::string_view line);

}  // namespace platform
