#pragma once

#include <pulse/context.h>

#include <functional>
#include <memory>

#include "desktop/linux/audio/PulseLoop.h"

namespace linux_desktop {

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
