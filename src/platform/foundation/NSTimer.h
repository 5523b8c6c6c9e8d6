#pragma once

#include <memory>

#include "platform/foundation/NSObject.h"
#include "platform/foundation/NSRunLoop.h"

namespace platform {

/// Sends a message once, later. Main thread only.
class NSTimer final : public NSObject {
 public:
  /// Sends `selector` to `target` after `seconds`, with the timer as its argument, and keeps the
  /// target alive until then.
  [[nodiscard]] static std::shared_ptr<NSTimer> scheduledTimerWithTimeInterval(
      double seconds, const std::shared_ptr<NSObject>& target, SEL selector);

  /// The message will not be sent any more. A timer that has fired is invalid already.
  void invalidate();
  [[nodiscard]] bool isValid() const { return id_ != 0; }

 private:
  NSRunLoop::TimerId id_ = 0;
};

}  // namespace platform
