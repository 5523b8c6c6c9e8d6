#include "desktop/simulated/SimulatedMainLoop.h"

#include <algorithm>

#include "platform/foundation/Process.h"

namespace simulated {

using platform::Duration;
using platform::MonotonicTime;

class SimulatedMainLoop::LoopTimer final : public Timer {
 public:
  LoopTimer(SimulatedMainLoop& loop, Key key) : loop_(loop), key_(std::move(key)) {}
  ~LoopTimer() override { loop_.timers_.erase(key_); }
  LoopTimer(const LoopTimer&) = delete;
  LoopTimer& operator=(const LoopTimer&) = delete;

 private:
  SimulatedMainLoop& loop_;
  Key key_;
};

void SimulatedMainLoop::post(Work work) {
  const std::lock_guard access(queueAccess_);
  queue_.push_back(std::move(work));
}

SimulatedMainLoop::Key SimulatedMainLoop::insert(Duration delay, Work fire) {
  const Key key{now_ + delay, ++lastTimer_};
  timers_.emplace(key, std::move(fire));
  return key;
}

std::unique_ptr<platform::port::MainLoop::Timer> SimulatedMainLoop::startTimer(Duration delay,
                                                                               Work fire) {
  return std::make_unique<LoopTimer>(*this, insert(delay, std::move(fire)));
}

void SimulatedMainLoop::at(Duration delay, Work happening) {
  static_cast<void>(insert(delay, std::move(happening)));
}

bool SimulatedMainLoop::workOffOne() {
  Work work;
  {
    const std::lock_guard access(queueAccess_);
    if (queue_.empty()) return false;
    work = std::move(queue_.front());
    queue_.pop_front();
  }
  work();
  return true;
}

void SimulatedMainLoop::run() {
  const bool isMain = !std::exchange(hasRun_, true);
  stopping_ = false;
  while (!stopping_ && !terminated_) {
    if (workOffOne()) continue;
    if (isMain) break;
    if (acts_.empty()) platform::programmingError("a modal loop runs and nobody will end it");
    const Work act = std::move(acts_.front());
    acts_.pop_front();
    act();
  }
  stopping_ = false;
}

void SimulatedMainLoop::settle() {
  while (!terminated_ && workOffOne()) {
  }
}

void SimulatedMainLoop::fireDueUntil(MonotonicTime end) {
  while (!terminated_ && !timers_.empty() && timers_.begin()->first.first <= end) {
    const auto timer = timers_.extract(timers_.begin());
    now_ = std::max(now_, timer.key().first);
    timer.mapped()();
  }
}

void SimulatedMainLoop::passUntil(MonotonicTime end) {
  settle();
  while (!terminated_ && !timers_.empty() && timers_.begin()->first.first <= end) {
    fireDueUntil(timers_.begin()->first.first);
    settle();
  }
  // Whoever slept on the way may have come further.
  if (!terminated_) now_ = std::max(now_, end);
}

void SimulatedMainLoop::advance(Duration duration) {
  passUntil(now_ + duration);
}

void SimulatedMainLoop::sleep(Duration duration) {
  sleeps_.push_back(duration);
  passUntil(now_ + duration);
}

platform::WallTime SimulatedMainLoop::wallClock() const {
  return wallStart_ + std::chrono::duration_cast<platform::WallTime::duration>(now_ - start());
}

}  // namespace simulated
