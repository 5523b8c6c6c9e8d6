#include "desktop/linux/process/StandardOutputStream.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <string>

namespace linux_desktop {

void StandardOutputStream::print(std::string_view text) {
  std::string line = insideLine_ ? "\n" : "";
  line.append(text).append("\n");
  std::string_view rest = line;
  // A pipe that has room takes PIPE_BUF bytes without blocking; more might wait for its reader.
  while (!rest.empty() && waitForRoom()) {
    const ssize_t count =
        ::write(descriptor_, rest.data(), std::min<std::size_t>(rest.size(), PIPE_BUF));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    rest.remove_prefix(static_cast<std::size_t>(count));
  }
  if (rest.size() < line.size()) insideLine_ = !rest.empty();
}

bool StandardOutputStream::waitForRoom() {
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + std::chrono::milliseconds(stuck_ ? 0 : 100);
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    pollfd wait{descriptor_, POLLOUT, 0};
    const int ready = ::poll(&wait, 1, static_cast<int>(std::max<long>(left.count(), 0)));
    if (ready < 0 && errno == EINTR) continue;
    stuck_ = ready == 0;
    return ready > 0;
  }
}

}  // namespace linux_desktop
