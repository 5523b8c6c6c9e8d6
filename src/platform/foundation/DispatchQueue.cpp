#include "platform/foundation/DispatchQueue.h"

#include "platform/foundation/NSRunLoop.h"
#include "platform/foundation/ProgrammingError.h"

namespace platform {

void DispatchQueue::async(Work work) const {
  NSRunLoop::mainRunLoop().enqueue(std::move(work));
}

void DispatchQueue::sync(const Work& work) const {
  if (kind_ == Kind::Main) programmingError("the main queue was made to wait for itself");
  work();
}

}  // namespace platform
