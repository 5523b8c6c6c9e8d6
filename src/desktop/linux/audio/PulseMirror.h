#pragma once

#include <pulse/context.h>
#include <pulse/introspect.h>
#include <pulse/subscribe.h>

#include <cstdint>
#include <functional>
#include <set>

#include "desktop/linux/audio/SinkTable.h"

namespace linux_desktop {

/// Keeps the SinkTable current: reads everything once, then what the server's events name.
/// Everything is called with the loop's lock.
class PulseMirror {
 public:
  struct Callbacks {                   // on the loop's thread, with its lock
    std::function<void()> complete;    // once after each follow()
    std::function<void()> unanswered;  // the server left a question unanswered for 30 seconds
  };

  explicit PulseMirror(Callbacks callbacks);

  /// Starts over on a new connection. Ids are kept when the server is still the same.
  void follow(pa_context& context);
  /// The connection is gone; what the table holds is history.
  void forget() { current_ = false; }

  /// Whether the table tells what the server last said, in full.
  [[nodiscard]] bool current() const { return current_; }
  [[nodiscard]] const SinkTable& sinks() const { return sinks_; }

  /// For a change that the server confirmed and will announce.
  void noteMuted(std::uint32_t index, bool muted) { sinks_.setMuted(index, muted); }
  /// What any answer to a question for the server's facts teaches.
  void noteServer(const pa_server_info& info);

 private:
  static void serverTold(pa_context* context, const pa_server_info* info, void* self);
  static void sinkListed(pa_context* context, const pa_sink_info* info, int end, void* self);
  static void sinkTold(pa_context* context, const pa_sink_info* info, int end, void* self);
  static void changed(pa_context* context, pa_subscription_event_type_t event, std::uint32_t index,
                      void* self);

  void put(const pa_sink_info& info);
  void removed(std::uint32_t index);
  void completeListing();

  Callbacks callbacks_;
  SinkTable sinks_;
  std::set<std::uint32_t> listed_;
  bool current_ = false;
};

}  // namespace linux_desktop
