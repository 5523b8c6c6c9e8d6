#pragma once

#include <string_view>

namespace platform::port {

/// Where the program's fixed lines go.
class StandardOutput {
 public:
  virtual ~StandardOutput() = default;
  /// Writes `text` and a line feed, at once, also into a pipe. A reader that is gone or a full disk
  /// is ignored: the lines are diagnostics.
  virtual void print(std::string_view text) = 0;
};

}  // namespace platform::port
