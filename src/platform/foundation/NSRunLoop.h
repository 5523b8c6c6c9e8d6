#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "platform/foundation/NSObject.h"
#include "platform/port/Program.h"

namespace platform {

/// The main run loop: the one place through which everything that happens reaches the application,
/// and so the keeper of its order. Main thread only.
///
/// What an event has queued, and what that has queued in turn, runs before the next event is acted
/// on. Whatever arrives until then, or while the main thread sleeps (see `sleep`), is held back; it
/// is acted on afterwards, in the order of arrival, before anything that arrives later.
class NSRunLoop final : public NSObject {
 public:
  using Work = std::function<void()>;

  [[nodiscard]] static NSRunLoop& mainRunLoop();

  /// Acts on something that has just arrived: now, or once what comes before it has had its turn.
  void deliver(Work event);

  /// Runs `work` after the current event, in the order of queuing.
  void enqueue(Work work);

  /// Runs `work` once at the end of the current turn, before the loop waits or sleeps.
  void beforeWaiting(Work work);

  using TimerId = std::uint64_t;
  /// Delivers `work` once, `delay` from now.
  TimerId scheduleTimer(Duration delay, Work work);
  /// Its work will not run any more; an id that has fired or is unknown is ignored.
  void cancelTimer(TimerId id);
  [[nodiscard]] std::size_t pendingTimers() const { return timers_.size(); }

  /// Sends `selector` to `target` after `seconds`. Keeps both objects alive until then.
  void performSelectorAfterDelay(const std::shared_ptr<NSObject>& target, SEL selector,
                                 const std::shared_ptr<NSObject>& object, double seconds);

  /// Blocks the main thread; animations in flight keep moving on the screen.
  void sleep(double seconds);

  [[nodiscard]] MonotonicTime now() const;

 private:
  [[nodiscard]] bool isWaiting() const { return !queued_.empty() || !held_.empty(); }
  void scheduleNext();
  void runNext();
  void flushBeforeWaiting();
  /// `function` on this run loop, unless it is gone by then.
  [[nodiscard]] Work guarded(void (NSRunLoop::*function)());

  // Here rather than in the desktop's queue, which outlives what the work keeps alive.
  std::deque<Work> queued_;
  std::deque<Work> held_;
  std::vector<Work> beforeWaiting_;
  std::map<TimerId, std::unique_ptr<port::MainLoop::Timer>> timers_;
  TimerId lastTimer_ = 0;
  bool sleeping_ = false;
  bool nextIsScheduled_ = false;
};

/// Seconds as the layer's durations.
[[nodiscard]] constexpr Duration durationOf(double seconds) {
  return std::chrono::duration_cast<Duration>(std::chrono::duration<double>(seconds));
}

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

/// The two queues that work is handed to. Main thread only.
///
/// Work on the main queue runs on the main thread, one item after another in the order of queuing,
/// each after the event that queued it has ended. The global queue (of default quality of service)
/// is served by the main thread too, between events: all that the application does there is hand
/// work on, and what it hands on arrives after everything that was already waiting.
class DispatchQueue {
 public:
  using Work = std::function<void()>;

  [[nodiscard]] static DispatchQueue mainQueue() { return DispatchQueue(Kind::Main); }
  [[nodiscard]] static DispatchQueue globalQueue() { return DispatchQueue(Kind::Global); }

  /// Returns at once.
  void async(Work work) const;
  /// Returns when `work` is done. On the main queue that is a programming error: it would wait for
  /// itself.
  void sync(const Work& work) const;

 private:
  enum class Kind { Main, Global };
  explicit DispatchQueue(Kind kind) : kind_(kind) {}

  Kind kind_;
};

}  // namespace platform
