#pragma once

#include <pulse/thread-mainloop.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>

namespace linux_desktop {

/// The thread on which libpulse works, and the lock that guards everything its callbacks touch:
/// they run on that thread with the lock held. Meets BasicLockable. The lock is only ever held for
/// the length of one callback, so taking it from the main thread does not wait for the server.
class PulseLoop {
 public:
  using Deadline = std::chrono::steady_clock::time_point;

  /// Aborts when the machine has no thread or no memory to give.
  PulseLoop();
  /// Without the lock.
  ~PulseLoop() { stop(); }
  PulseLoop(const PulseLoop&) = delete;
  PulseLoop& operator=(const PulseLoop&) = delete;

  void lock() { pa_threaded_mainloop_lock(loop_.get()); }
  void unlock() { pa_threaded_mainloop_unlock(loop_.get()); }
  [[nodiscard]] pa_mainloop_api* api() { return pa_threaded_mainloop_get_api(loop_.get()); }

  /// Ends the thread: no callback runs from here on. Without the lock; may be called again.
  void stop() { pa_threaded_mainloop_stop(loop_.get()); }

  /// With the lock, from another thread: lets callbacks run until `happened` or the deadline, and
  /// says whether it happened. `happened` is asked again after each wakeWaiter().
  [[nodiscard]] bool waitUntil(Deadline deadline, const std::function<bool()>& happened) {
    return changed_.wait_until(*this, deadline, happened);
  }
  void wakeWaiter() { changed_.notify_all(); }

 private:
  struct Free {
    void operator()(pa_threaded_mainloop* loop) const { pa_threaded_mainloop_free(loop); }
  };

  std::condition_variable_any changed_;
  std::unique_ptr<pa_threaded_mainloop, Free> loop_;
};

}  // namespace linux_desktop
