#pragma once

#include <pulse/context.h>
#include <pulse/introspect.h>
#include <pulse/subscribe.h>

#include <array>
#include <cstdint>
#include <functional>
#include <set>

#include "desktop/linux/audio/DeviceTable.h"

namespace linux_desktop {

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

  /// For changes that the server confirmed and will announce.
  void noteMuted(DeviceKind kind, std::uint32_t index, bool muted) {
    at(kind).table.setMuted(index, muted);
  }
  void noteVolume(DeviceKind kind, std::uint32_t index, const pa_cvolume& volume) {
    at(kind).table.setVolume(index, volume);
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
