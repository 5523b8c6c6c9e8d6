#include "platform/foundation/NSRunLoop.h"

#include <utility>

#include "platform/Runtime.h"

namespace platform {
namespace {

port::MainLoop& mainLoop() {
  return Runtime::current().desktop().mainLoop;
}

}  // namespace

NSRunLoop& NSRunLoop::mainRunLoop() {
  return *Runtime::current().instance<NSRunLoop>();
}

void NSRunLoop::deliver(Work event) {
  if (!sleeping_ && !isWaiting()) {
    event();
    return;
  }
  held_.push_back(std::move(event));
  scheduleNext();
}

void NSRunLoop::enqueue(Work work) {
  queued_.push_back(std::move(work));
  scheduleNext();
}

void NSRunLoop::scheduleNext() {
  if (sleeping_ || nextIsScheduled_ || !isWaiting()) return;
  nextIsScheduled_ = true;
  mainLoop().post(guarded(&NSRunLoop::runNext));
}

void NSRunLoop::runNext() {
  nextIsScheduled_ = false;
  if (sleeping_) return;
  std::deque<Work>& first = queued_.empty() ? held_ : queued_;
  const Work work = std::move(first.front());
  first.pop_front();
  // Before the work: it may run a modal loop, in which the rest must have its turn too.
  scheduleNext();
  work();
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
  scheduleNext();
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
