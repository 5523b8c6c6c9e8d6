#pragma once

#include <pulse/volume.h>

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "platform/coreaudio/AudioObject.h"

namespace linux_desktop {

/// A sink or a source as the sound server described it last.
struct Device {
  platform::AudioObjectID id = 0;
  std::uint32_t index = 0;  // the server's own number, which the requests take
  std::string name;
  bool muted = false;
  pa_cvolume volume{};
};

/// The copy of the server's devices of one kind from which reads are answered. Gives each an id
/// that it keeps while it exists, over a lost connection too as long as it is the same server; a
/// table never gives an id twice. Plain data without a thread of its own.
class DeviceTable {
 public:
  /// `cookie` tells one run of a server from another: devices of an earlier run are forgotten.
  void setServer(std::uint32_t cookie, std::string defaultName);
  /// Adds the device of that index, or changes it. The id is of the table's own giving.
  void put(Device told);
  void setMuted(std::uint32_t index, bool muted);
  void setVolume(std::uint32_t index, const pa_cvolume& volume);
  void remove(std::uint32_t index) { devices_.erase(index); }
  void removeAllBut(const std::set<std::uint32_t>& indices);

  /// Absent when the server names none, or one that it has not listed.
  [[nodiscard]] std::optional<Device> defaultDevice() const;
  [[nodiscard]] std::optional<Device> find(platform::AudioObjectID id) const;
  [[nodiscard]] bool empty() const { return devices_.empty(); }
  [[nodiscard]] const std::string& defaultName() const { return defaultName_; }

 private:
  std::map<std::uint32_t, Device> devices_;  // by index
  std::string defaultName_;
  std::optional<std::uint32_t> cookie_;
  platform::AudioObjectID nextId_ = platform::kAudioObjectSystemObject + 1;
};

}  // namespace linux_desktop
