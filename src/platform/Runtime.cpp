#include "platform/Runtime.h"

#include "platform/foundation/Process.h"

namespace platform {
namespace {

Runtime* currentRuntime = nullptr;

}  // namespace

Runtime::Runtime(const Desktop& desktop) : desktop_(desktop) {
  if (currentRuntime != nullptr) programmingError("a second Runtime was made while one lives");
  currentRuntime = this;
}

Runtime::~Runtime() {
  while (!order_.empty()) {
    // Whoever goes may still ask for older instances, so each leaves the table only when it is
    // gone.
    const std::type_index youngest = order_.back();
    order_.pop_back();
    const std::shared_ptr<void> last = instances_.at(youngest);
    instances_.erase(youngest);
  }
  currentRuntime = nullptr;
}

Runtime& Runtime::current() {
  if (currentRuntime == nullptr) programmingError("there is no Runtime");
  return *currentRuntime;
}

}  // namespace platform
