#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

#include "desktop/linux/audio/PulseServer.h"
#include "desktop/linux/audio/VolumeControl.h"
#include "platform/port/AudioObjects.h"

namespace linux_desktop {

/// The audio objects over the native protocol of PulseAudio, which PipeWire speaks too. Every sink
/// is a device; the default output device is the server's default sink.
///
/// What a caller sees:
///   no server, or it was killed    hasProperty is false, every call kAudioHardwareNotRunningError;
///   the server hangs               reads answer from the copy; a write waits for half a second and
///                                  gives kAudioHardwareNotRunningError, the next give it at once,
///                                  until the server answers again (or half a minute has passed);
///   no output device               'dOut' is absent, kAudioHardwareUnknownPropertyError;
///   a device that was unplugged    kAudioHardwareBadObjectError, for ever;
///   refused by the server          kAudioHardwareUnspecifiedError.
/// All but an unplugged device also give one line on standard error an incident; that one, and
/// another default, are ordinary life and told on the level info. See PulseServer::setMuted
/// for how far a write can act late.
///
/// A call that comes before the first connection is made waits for it, within the same half
/// second. Main thread.
[[nodiscard]] std::unique_ptr<platform::port::AudioObjects> pulseAudioObjects(PulseServer& server);

/// The volumes of the sound server's default sink and source. Hung and absent servers are met as
/// the audio objects meet them.
[[nodiscard]] std::unique_ptr<VolumeControl> pulseVolumeControl(PulseServer& server);

/// The sound of this desktop over one connection to its server. Main thread.
class PulseSound {
 public:
  /// Starts to connect and returns at once. Another wait than the program's is for machines so busy
  /// that a server which is well looks hung.
  explicit PulseSound(std::chrono::milliseconds longestWait = PulseServer::kLongestWait)
      : server_(longestWait) {}

  [[nodiscard]] platform::port::AudioObjects& objects() { return *objects_; }
  [[nodiscard]] VolumeControl& volume() { return *volume_; }

  /// Whether no server answered when it was last tried, or the one that did has gone. False as long
  /// as that is not known.
  [[nodiscard]] bool isServerMissing() const { return server_.isMissing(); }
  /// Called from the event loop when that has changed. Empty: nobody is told.
  void setServerMissingChanged(std::function<void()> changed) {
    server_.setMissingChanged(std::move(changed));
  }

 private:
  PulseServer server_;
  std::unique_ptr<platform::port::AudioObjects> objects_ = pulseAudioObjects(server_);
  std::unique_ptr<VolumeControl> volume_ = pulseVolumeControl(server_);
};

}  // namespace linux_desktop
