#pragma once

#include <unistd.h>

#include <string_view>

#include "platform/port/Program.h"

namespace linux_desktop {

/// Lines on a file descriptor, past every buffer of the C and C++ libraries.
///
/// A line that fits a pipe's atomic size (4096 bytes, its line feed included) is written whole or
/// not at all; a longer one follows in parts of that size. A reader that does not read is waited
/// for 100 ms, once; until it reads again, what does not fit at once is dropped, and so is the rest
/// of a line that got stuck. All other failures are ignored. Needs SIGPIPE ignored (see
/// TerminationSignals) to outlive a reader that is gone. Main thread only.
class StandardOutputStream final : public platform::port::StandardOutput {
 public:
  /// Does not take ownership of `descriptor`.
  explicit StandardOutputStream(int descriptor = STDOUT_FILENO) : descriptor_(descriptor) {}

  void print(std::string_view text) override;

 private:
  bool waitForRoom();

  int descriptor_;
  bool stuck_ = false;
  bool insideLine_ = false;  // the last line lost its end
};

}  // namespace linux_desktop
