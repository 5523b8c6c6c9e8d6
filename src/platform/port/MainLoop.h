#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace platform {

using Duration = std::chrono::nanoseconds;
/// A point on the desktop's own monotonic clock. Only differences mean something.
using MonotonicTime = std::chrono::time_point<std::chrono::steady_clock, Duration>;
/// A point in civil time, UTC.
using WallTime = std::chrono::system_clock::time_point;

namespace port {

/// The one loop of the process and its clocks. Everything but `post` is main thread only.
///
/// A desktop reports events (clicks, timers, changes of services) through the client interfaces and
/// callbacks of the port, on the main thread, at any time that one of `run` and `sleep` is on the
/// stack. It need not hold anything back while it sleeps: the layer keeps what arrives then in
/// order and acts on it afterwards (see NSRunLoop).
class MainLoop {
 public:
  using Work = std::function<void()>;

  /// A one-shot timer. Destroying it before it fired cancels it; then its work never runs. It may
  /// be destroyed from inside its work.
  class Timer {
   public:
    virtual ~Timer() = default;
  };

  virtual ~MainLoop() = default;

  /// Runs `work` once on the main thread, after the current event, in the order of posting; nested
  /// runs and sleeps work it off too. Never runs it inside `post`. May be called from any thread.
  virtual void post(Work work) = 0;

  /// Runs `fire` once on the main thread no earlier than `delay` from now. Timers due at the same
  /// time fire in the order in which they were started. Nothing wakes the process in between.
  [[nodiscard]] virtual std::unique_ptr<Timer> startTimer(Duration delay, Work fire) = 0;

  /// Handles events until `stop`. Nests: an inner run is a modal one.
  virtual void run() = 0;

  /// Ends the innermost `run` once the current event is done.
  virtual void stop() = 0;

  /// Ends every `run` and `sleep`, those of the future too: the program is ending.
  virtual void terminate() = 0;

  /// Blocks the caller for `duration`. Animations in flight keep moving on the screen and windows
  /// keep their places; see above for what arrives meanwhile. Returns early only after
  /// `terminate`.
  virtual void sleep(Duration duration) = 0;

  [[nodiscard]] virtual MonotonicTime now() const = 0;
  [[nodiscard]] virtual WallTime wallClock() const = 0;
};

}  // namespace port
}  // namespace platform
