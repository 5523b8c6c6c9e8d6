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
  while (!instances_.empty()) {
    // Out of the table first: whoever goes may still ask for older instances.
    const std::shared_ptr<void> youngest = instances_.back().second;
    instances_.pop_back();
  }
  currentRuntime = nullptr;
}

Runtime& Runtime::current() {
  if (currentRuntime == nullptr) programmingError("there is no Runtime");
  return *currentRuntime;
}

}  // namespace platform
