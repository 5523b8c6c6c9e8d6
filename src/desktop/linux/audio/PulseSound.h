#pragma once

#include <chrono>
#include <functional>
#include <utility>

#include "desktop/linux/audio/PulseAudioObjects.h"
#include "desktop/linux/audio/PulseServer.h"
#include "desktop/linux/audio/PulseVolumeControl.h"

namespace linux_desktop {

/// The sound of this desktop over one connection to its server. Main thread.
class PulseSound {
 public:
  /// Starts to connect and returns at once. Another wait than the program's is for machines so busy
  /// that a server which is well looks hung.
  explicit PulseSound(std::chrono::milliseconds longestWait = PulseServer::kLongestWait)
      : server_(longestWait) {}

  [[nodiscard]] PulseAudioObjects& objects() { return objects_; }
  [[nodiscard]] VolumeControl& volume() { return volume_; }

  /// Whether no server answered when it was last tried, or the one that did has gone. False as long
  /// as that is not known.
  [[nodiscard]] bool isServerMissing() const { return server_.isMissing(); }
  /// Called from the event loop when that has changed. Empty: nobody is told.
  void setServerMissingChanged(std::function<void()> changed) {
    server_.setMissingChanged(std::move(changed));
  }

 private:
  PulseServer server_;
  PulseAudioObjects objects_{server_};
  PulseVolumeControl volume_{server_};
};

}  // namespace linux_desktop
