#include "platform/foundation/NSTimer.h"

#include <utility>

namespace platform {

std::shared_ptr<NSTimer> NSTimer::scheduledTimerWithTimeInterval(
    double seconds, const std::shared_ptr<NSObject>& target, SEL selector) {
  auto timer = std::make_shared<NSTimer>();
  timer->id_ = NSRunLoop::mainRunLoop().scheduleTimer(
      durationOf(seconds), [timer, target, selector = std::move(selector)] {
        timer->id_ = 0;
        target->performSelector(selector, timer.get());
      });
  return timer;
}

void NSTimer::invalidate() {
  if (const auto id = std::exchange(id_, 0)) NSRunLoop::mainRunLoop().cancelTimer(id);
}

}  // namespace platform
