#include "platform/foundation/NSRunLoop.h"

#include <utility>

#include "platform/Runtime.h"

namespace platform {
namespace {

port::MainLoop& mainLoop() {
  return Runtime::current().desktop().mainLoop();
}

}  // namespace

NSRunLoop& NSRunLoop::mainRunLoop() {
  return *Runtime::current().instance<NSRunLoop>();
}

void NSRunLoop::deliver(Work event) {
  if (!isHolding()) {
    event();
    return;
  }
  held_.push_back(std::move(event));
}

void NSRunLoop::enqueue(Work work) {
  queued_.push_back(std::move(work));
  mainLoop().post(guarded(&NSRunLoop::deliverQueued));
}

void NSRunLoop::deliverQueued() {
  Work work = std::move(queued_.front());
  queued_.pop_front();
  deliver(std::move(work));
}

void NSRunLoop::beforeWaiting(Work work) {
  if (beforeWaiting_.empty()) mainLoop().post(guarded(&NSRunLoop::flushBeforeWaiting));
  beforeWaiting_.push_back(std::move(work));
}

void NSRunLoop::flushBeforeWaiting() {
  for (const Work& work : std::exchange(beforeWaiting_, {})) work();
}

NSRunLoop::TimerId NSRunLoop::scheduleTimer(Duration delay, Work work) {
  const TimerId id = ++lastTimer_;
  // The entry stays while the work is held back, so that it can still be cancelled.
  timers_[id] = mainLoop().startTimer(delay, [this, id, work = std::move(work)] {
    deliver([this, id, work] {
      const auto timer = timers_.extract(id);
      if (!timer.empty()) work();
    });
  });
  return id;
}

void NSRunLoop::cancelTimer(TimerId id) {
  timers_.erase(id);
}

void NSRunLoop::performSelectorAfterDelay(const std::shared_ptr<NSObject>& target, SEL selector,
                                          const std::shared_ptr<NSObject>& object, double seconds) {
  scheduleTimer(durationOf(seconds), [target, selector = std::move(selector), object] {
    target->performSelector(selector, object.get());
  });
}

void NSRunLoop::sleep(double seconds) {
  flushBeforeWaiting();
  const bool outer = std::exchange(sleeping_, true);
  mainLoop().sleep(durationOf(seconds));
  sleeping_ = outer;
  if (!sleeping_) scheduleRelease();
}

void NSRunLoop::scheduleRelease() {
  if (!held_.empty()) mainLoop().post(guarded(&NSRunLoop::releaseOne));
}

void NSRunLoop::releaseOne() {
  if (sleeping_ || held_.empty()) return;
  const Work event = std::move(held_.front());
  held_.pop_front();
  // Before the event: it may run a modal loop, in which the rest must have its turn too.
  scheduleRelease();
  event();
}

NSRunLoop::Work NSRunLoop::guarded(void (NSRunLoop::*function)()) {
  return [weak = weak_from_this(), function] {
    if (const auto self = weak.lock()) (static_cast<NSRunLoop&>(*self).*function)();
  };
}

MonotonicTime NSRunLoop::now() const {
  return mainLoop().now();
}

}  // namespace platform
