#pragma once

#include <chrono>
#include <functional>
#include <utility>

#include "desktop/linux/audio/PulseAudioObjects.h"
#include "desktop/linux/audio/PulseServer.h"
#include "desktop/linux/audio/PulseVolumeControl.h"
#include "desktop/linux/audio/SocketWatch.h"

namespace linux_desktop {

/// The sound of this desktop over one connection to its server. A server that went away is
/// connected to again when its socket appears, or by the next call.
///
/// Needs a QCoreApplication for the watch on the socket. Main thread.
class PulseSound {
 public:
  /// Starts to connect and returns at once. Another wait than the program's is for machines so busy
  /// that a server which is well looks hung.
  explicit PulseSound(std::chrono::milliseconds longestWait = PulseServer::kLongestWait);

  [[nodiscard]] PulseAudioObjects& objects() { return objects_; }
  [[nodiscard]] VolumeControl& volume() { return volume_; }

  /// Whether no server answered when it was last tried, or the one that did has gone. False as long
  /// as that is not known.
  [[nodiscard]] bool isServerMissing() const { return isServerMissing_; }
  /// Called from the event loop when that has changed. Empty: nobody is told.
  void setServerMissingChanged(std::function<void()> changed) { changed_ = std::move(changed); }

 private:
  /// In any thread.
  void serverCame(bool isThere);
  void noteServer(bool isThere);

  std::function<void()> changed_;
  bool isServerMissing_ = false;
  SocketWatch watch_;
  PulseServer server_;  // after the watch, to which its thread posts
  PulseAudioObjects objects_{server_};
  PulseVolumeControl volume_{server_};
};

}  // namespace linux_desktop
