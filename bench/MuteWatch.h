#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>

struct pa_context;
struct pa_threaded_mainloop;

namespace bench {

using Clock = std::chrono::steady_clock;

/// Sees when a sink or a source is muted or not, as the sound server tells its subscribers; and
/// mutes it by one call, which is as fast as anybody can. Both over one connection that is open
/// already.
class MuteWatch {
 public:
  enum class Device { Sink, Source };

  /// Connects to the server that this process's environment names. Throws std::runtime_error when
  /// it does not answer or has no such device.
  explicit MuteWatch(std::string name, Device device = Device::Sink);
  ~MuteWatch();
  MuteWatch(const MuteWatch&) = delete;
  MuteWatch& operator=(const MuteWatch&) = delete;

  [[nodiscard]] bool muted() const;
  /// Returns when the request is on its way.
  void request(bool muted);
  /// When it was seen to be so. Throws std::runtime_error when it is not within twenty seconds.
  [[nodiscard]] Clock::time_point await(bool muted);

 private:
  struct Calls;
  [[nodiscard]] const Calls& calls() const;
  void ask();
  void saw(bool muted);

  struct StopLoop {
    void operator()(pa_threaded_mainloop* loop) const;
  };
  struct Disconnect {
    void operator()(pa_context* context) const;
  };

  std::string name_;
  Device device_;
  mutable std::mutex access_;
  std::condition_variable changed_;
  bool known_ = false;
  bool muted_ = false;
  Clock::time_point since_;
  std::unique_ptr<pa_threaded_mainloop, StopLoop> loop_;
  std::unique_ptr<pa_context, Disconnect> context_;
};

}  // namespace bench
