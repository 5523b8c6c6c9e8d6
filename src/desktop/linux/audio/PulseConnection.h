#pragma once

#include <pulse/context.h>
#include <pulse/thread-mainloop.h>

#include <QDateTime>
#include <QFileInfo>
#include <QObject>
#include <QString>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>

#include "desktop/linux/files/WholeFile.h"
#include "desktop/linux/loop/OneShot.h"

namespace linux_desktop {

/// Says when a new socket of the user's sound server appears:
/// $PULSE_RUNTIME_PATH/native or $XDG_RUNTIME_DIR/pulse/native. Asleep in between, and without any
/// watch while stopped. Where neither variable is set, or a server is only reached over the
/// network, nothing is watched. Main thread, which runs an event loop.
class SocketWatch : public QObject {
 public:
  /// `appeared` is called from the event loop.
  explicit SocketWatch(std::function<void()> appeared);

  /// Notes the socket that is about to be tried: that one does not count as new.
  void attempting() { tried_ = present(); }
  /// A socket that came since attempting() counts.
  void start();
  void stop();

 private:
  /// When the socket that is there was made, which tells it from others at its path; invalid where
  /// there is none.
  [[nodiscard]] QDateTime present() const { return QFileInfo(socket_).metadataChangeTime(); }
  void look();

  QString socket_;  // empty: nothing to watch
  QDateTime tried_;
  std::unique_ptr<FileWatch> watch_;
  OneShot settle_;
};

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

/// One connection to the sound server at a time, and never one that starts a server.
///
/// Everything is called with the loop's lock. A context that failed cannot be used again, so each
/// attempt makes a new one. An attempt at a server that hangs stays in Connecting until libpulse
/// gives it up after 30 seconds.
class PulseConnection {
 public:
  enum class State { Down, Connecting, Ready };

  struct Callbacks {  // on the loop's thread, with its lock
    std::function<void(pa_context&)> ready;
    std::function<void(int error)> lost;  // one of PA_ERR_*; also for an attempt that failed
  };

  PulseConnection(PulseLoop& loop, Callbacks callbacks);

  /// Starts an attempt unless one is under way or has succeeded. Returns at once; the connection
  /// is made on the loop's thread.
  void begin();
  /// Ends the connection without a callback. Requests that were not answered never will be.
  void drop();

  [[nodiscard]] State state() const { return state_; }
  /// Null unless Ready.
  [[nodiscard]] pa_context* context() const;

 private:
  struct Close {
    void operator()(pa_context* context) const;
  };

  static void open(pa_mainloop_api* api, void* self);
  static void contextChanged(pa_context* context, void* self);
  void fail(int error);

  PulseLoop& loop_;
  Callbacks callbacks_;
  State state_ = State::Down;
  std::unique_ptr<pa_context, Close> context_;
};

}  // namespace linux_desktop
