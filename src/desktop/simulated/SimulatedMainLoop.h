#pragma once

#include <deque>
#include <map>
#include <mutex>
#include <utility>

#include "platform/port/Program.h"

namespace simulated {

/// A loop that does what is due and nothing more, on a clock that only the test and `sleep` move.
///
/// `run` works off what is queued. With nothing left to do the outermost run gives control back to
/// the test; an inner one waits for a user who is not there, unless `whenWaiting` says what the
/// user does next.
class SimulatedMainLoop final : public platform::port::MainLoop {
 public:
  void post(Work work) override;
  [[nodiscard]] std::unique_ptr<Timer> startTimer(platform::Duration delay, Work fire) override;
  void run() override;
  void stop() override { stopping_ = true; }
  void terminate() override { terminated_ = true; }
  void sleep(platform::Duration duration) override;
  [[nodiscard]] platform::MonotonicTime now() const override { return now_; }
  [[nodiscard]] platform::WallTime wallClock() const override;

  // --- Levers ---
  /// A new process: the next run is the application's own again.
  void restart() { hasRun_ = terminated_ = false; }
  /// Works off the queue.
  void settle();
  /// Moves the clock, fires what comes due on the way, each at its time, and works off the queue.
  void advance(platform::Duration duration);
  /// Something that happens `delay` from now, whatever the program is doing then.
  void at(platform::Duration delay, Work happening);
  /// What the user does when a modal run has nothing left to do; one entry each time.
  void whenWaiting(Work act) { acts_.push_back(std::move(act)); }
  /// The civil time at which the clock started.
  void setWallClockStart(platform::WallTime time) { wallStart_ = time; }

  [[nodiscard]] std::size_t pendingTimers() const { return timers_.size(); }
  [[nodiscard]] bool isTerminated() const { return terminated_; }
  /// How often and how long the program has slept.
  [[nodiscard]] const std::deque<platform::Duration>& sleeps() const { return sleeps_; }

 private:
  class LoopTimer;
  using Key = std::pair<platform::MonotonicTime, unsigned long>;

  static constexpr platform::MonotonicTime start() { return platform::MonotonicTime{}; }
  [[nodiscard]] Key insert(platform::Duration delay, Work fire);
  bool workOffOne();
  void fireDueUntil(platform::MonotonicTime end);
  void passUntil(platform::MonotonicTime end);

  std::mutex queueAccess_;
  std::deque<Work> queue_;
  std::deque<Work> acts_;
  std::map<Key, Work> timers_;
  std::deque<platform::Duration> sleeps_;
  platform::MonotonicTime now_ = start();
  platform::WallTime wallStart_{};
  unsigned long lastTimer_ = 0;
  bool hasRun_ = false;
  bool stopping_ = false;
  bool terminated_ = false;
};

}  // namespace simulated
