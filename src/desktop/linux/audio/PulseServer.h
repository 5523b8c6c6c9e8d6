#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "desktop/linux/audio/PulseConnection.h"
#include "desktop/linux/audio/PulseMirror.h"
#include "platform/coreaudio/AudioObject.h"

namespace linux_desktop {

/// The sound server as the main thread sees it: a copy to read and requests with a bound.
///
/// A server that once let a deadline pass counts as silent: until it answers again, or libpulse
/// gives the open question up after 30 seconds, nothing waits for it. Each kind of trouble is
/// reported once, until it is over. A server that went away is connected to again when its socket
/// appears, or by the next call.
///
/// Main thread only, on which a QCoreApplication is needed for the watch on the socket. A call
/// never waits beyond the deadline that it is given.
class PulseServer {
 public:
  using Deadline = PulseLoop::Deadline;
  enum class Answer { Done, NotRunning, NoSuchDevice, Refused };

  /// The longest that an operation of the program waits.
  static constexpr std::chrono::milliseconds kLongestWait{500};

  /// Starts to connect and returns at once.
  explicit PulseServer(std::chrono::milliseconds longestWait);
  ~PulseServer() { loop_.stop(); }

  /// The longest wait, from now on.
  [[nodiscard]] Deadline deadlineFromNow() const {
    return std::chrono::steady_clock::now() + longestWait_;
  }

  /// Whether no server answered when it was last tried, or the one that did has gone. False as long
  /// as that is not known.
  [[nodiscard]] bool isMissing() const { return isMissing_; }
  /// Called from the event loop when that has changed. Empty: nobody is told.
  void setMissingChanged(std::function<void()> changed) { missingChanged_ = std::move(changed); }

  /// Whether there is a copy to read; where there is none, connects and waits for it.
  [[nodiscard]] bool reachable(Deadline deadline);
  [[nodiscard]] std::optional<Device> defaultDevice(DeviceKind kind);
  /// The default sink. That there is no sink at all is reported.
  [[nodiscard]] std::optional<Device> outputDevice();
  [[nodiscard]] std::optional<Device> sink(platform::AudioObjectID id);

  /// Done once the server has confirmed it; the copy shows it then.
  ///
  /// Nothing is ever sent twice, and nothing takes effect after NotRunning was returned, but for
  /// one case. PulseAudio (16.1) carries out what lies in its queue when it wakes, even if the
  /// client has hung up, and libpulse has no way to take a request back. Hence the server is first
  /// asked for a sign of life and gets the request right after its answer, within the same
  /// deadline: a server that hangs never gets it at all. What remains is a server that stops in
  /// the microseconds between the two. PipeWire (0.3.65) answers the sign of life in its
  /// PulseAudio front, and drops the request when the client hangs up, also where only the engine
  /// behind the front hangs; the front is given its moment to notice before this returns.
  [[nodiscard]] Answer setMuted(DeviceKind kind, platform::AudioObjectID id, bool muted,
                                Deadline deadline);
  /// The same for the volumes of the channels.
  [[nodiscard]] Answer setSourceVolume(platform::AudioObjectID id, const pa_cvolume& volume,
                                       Deadline deadline);

 private:
  enum class Trouble { None, NoServer, Silent, NoDevice };
  enum class SignOfLife { NotAsked, Awaited, Given };

  /// One request that changes a device: how it is sent, and what it makes of the copy.
  struct Change {
    std::function<pa_operation*(std::uint32_t index, pa_context_success_cb_t answered, void* self)>
        send;
    std::function<void(Device& copy)> note;
  };

  /// Starts to connect, if not connected, and returns at once.
  void connect();

  // All with the loop's lock.
  void begin();
  bool awaitCopy(Deadline deadline);
  bool awaitSignOfLife(Deadline deadline);
  Answer request(DeviceKind kind, platform::AudioObjectID id, const Change& change,
                 Deadline deadline);
  Answer await(const Change& change, std::uint32_t index, Deadline deadline);
  void hangUp();

  static void signOfLife(pa_context* context, const pa_server_info* info, void* self);
  void copyComplete();
  void lost(int error);
  void noteMissing(bool isMissing);

  void fellSilent();
  void answersAgain();
  void report(Trouble trouble, const std::string& text);

  std::chrono::milliseconds longestWait_;
  bool isMissing_ = false;
  std::function<void()> missingChanged_;
  SocketWatch watch_;
  PulseLoop loop_;  // after the watch, to which its thread posts
  PulseConnection connection_;
  PulseMirror mirror_;
  SignOfLife signOfLife_ = SignOfLife::NotAsked;
  bool silent_ = false;
  Trouble trouble_ = Trouble::None;  // the last one reported that is not over
};

}  // namespace linux_desktop
