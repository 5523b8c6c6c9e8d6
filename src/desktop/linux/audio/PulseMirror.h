#pragma once

#include <pulse/context.h>
#include <pulse/introspect.h>
#include <pulse/subscribe.h>
#include <pulse/volume.h>

#include <array>
#include <cstdint>
#include <functional>
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
  /// Null when there is none of that index.
  [[nodiscard]] Device* at(std::uint32_t index);
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

enum class DeviceKind : std::uint8_t { Sink, Source };

/// Keeps a DeviceTable of the sinks and one of the sources current: reads everything once, then
/// what the server's events name. A monitor, the source of what a sink plays, is no device of its
/// own and in neither. Everything is called with the loop's lock.
class PulseMirror {
 public:
  struct Callbacks {                   // on the loop's thread, with its lock
    std::function<void()> complete;    // once after each follow()
    std::function<void()> unanswered;  // the server left a question unanswered for 30 seconds
  };

  explicit PulseMirror(Callbacks callbacks);

  /// Starts over on a new connection. Ids are kept when the server is still the same.
  void follow(pa_context& context);
  /// The connection is gone; what the tables hold is history.
  void forget() { current_ = false; }

  /// Whether the tables tell what the server last said, in full.
  [[nodiscard]] bool current() const { return current_; }
  [[nodiscard]] const DeviceTable& devices(DeviceKind kind) const { return at(kind).table; }

  /// For changes that the server confirmed and will announce; null when the device is gone.
  [[nodiscard]] Device* device(DeviceKind kind, std::uint32_t index) {
    return at(kind).table.at(index);
  }
  /// What any answer to a question for the server's facts teaches.
  void noteServer(const pa_server_info& info);

 private:
  struct Half {
    DeviceTable table;
    std::set<std::uint32_t> listed;
    bool complete = false;
  };

  static void serverTold(pa_context* context, const pa_server_info* info, void* self);
  // `Info` is what libpulse tells of a device: pa_sink_info or pa_source_info.
  template <class Info>
  static void listed(pa_context* context, const Info* info, int end, void* self);
  template <class Info>
  static void told(pa_context* context, const Info* info, int end, void* self);
  static void changed(pa_context* context, pa_subscription_event_type_t event, std::uint32_t index,
                      void* self);

  [[nodiscard]] Half& at(DeviceKind kind) { return halves_.at(static_cast<std::size_t>(kind)); }
  [[nodiscard]] const Half& at(DeviceKind kind) const {
    return halves_.at(static_cast<std::size_t>(kind));
  }
  template <class Info>
  void put(const Info& info);
  void setServer(DeviceKind kind, std::uint32_t cookie, const char* defaultName);
  void removed(DeviceKind kind, std::uint32_t index);
  void completeListing(Half& half);

  Callbacks callbacks_;
  std::array<Half, 2> halves_;  // by DeviceKind
  bool current_ = false;
};

}  // namespace linux_desktop
