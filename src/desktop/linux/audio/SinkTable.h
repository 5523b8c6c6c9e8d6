#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "platform/coreaudio/AudioObject.h"

namespace linux_desktop {

/// An output device as the sound server described it last.
struct Sink {
  platform::AudioObjectID id = 0;
  std::uint32_t index = 0;  // the server's own number, which the requests take
  std::string name;
  bool muted = false;
};

/// The copy of the server's sinks from which reads are answered. Gives each sink an id that it
/// keeps while it exists, over a lost connection too as long as it is the same server; ids are
/// never given twice. Plain data without a thread of its own.
class SinkTable {
 public:
  /// `cookie` tells one run of a server from another: the sinks of an earlier run are forgotten.
  void setServer(std::uint32_t cookie, std::string defaultName);
  void put(std::uint32_t index, std::string name, bool muted);
  void setMuted(std::uint32_t index, bool muted);
  void remove(std::uint32_t index) { sinks_.erase(index); }
  void removeAllBut(const std::set<std::uint32_t>& indices);

  /// Absent when the server names none, or one that it has not listed.
  [[nodiscard]] std::optional<Sink> defaultSink() const;
  [[nodiscard]] std::optional<Sink> find(platform::AudioObjectID id) const;
  [[nodiscard]] bool empty() const { return sinks_.empty(); }
  [[nodiscard]] const std::string& defaultName() const { return defaultName_; }

 private:
  std::map<std::uint32_t, Sink> sinks_;  // by index
  std::string defaultName_;
  std::optional<std::uint32_t> cookie_;
  platform::AudioObjectID nextId_ = platform::kAudioObjectSystemObject + 1;
};

}  // namespace linux_desktop
