#include "platform/foundation/NSRunLoop.h"

#include <utility>

#include "platform/Runtime.h"
#include "platform/foundation/Process.h"

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

// --- Timers ---

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

// --- Queues ---

void DispatchQueue::async(Work work) const {
  NSRunLoop::mainRunLoop().enqueue(std::move(work));
}

void DispatchQueue::sync(const Work& work) const {
  if (kind_ == Kind::Main) programmingError("the main queue was made to wait for itself");
  work();
}

}  // namespace platform
