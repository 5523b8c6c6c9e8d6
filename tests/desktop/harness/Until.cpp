#include "desktop/harness/Until.h"

#include <thread>

namespace harness {

bool until(const std::function<bool()>& fact, std::chrono::milliseconds patience,
           const std::function<void()>& meanwhile) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (!fact()) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    if (meanwhile) meanwhile();
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

}  // namespace harness
