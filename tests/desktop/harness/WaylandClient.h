#pragma once

#include <wayland-client.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "desktop/harness/XConnection.h"

struct zxdg_output_manager_v1;
struct zxdg_output_v1;

namespace harness {

/// A monitor as the compositor tells every client of it.
struct WaylandOutput {
  std::string name;
  /// In the coordinates of the whole desktop, after scaling.
  Rect area;
  bool operator==(const WaylandOutput&) const = default;
};

/// A connection of the test's own to a compositor, as any foreign client has it. One thread.
class WaylandClient {
 public:
  /// Throws std::runtime_error when the compositor cannot be reached.
  explicit WaylandClient(const std::string& socket);
  ~WaylandClient();
  WaylandClient(const WaylandClient&) = delete;
  WaylandClient& operator=(const WaylandClient&) = delete;

  /// Returns once the compositor has taken all that was asked for; throws std::runtime_error when
  /// it is gone or has refused.
  void sync();
  /// The monitors that are on now, from left to right.
  [[nodiscard]] std::vector<WaylandOutput> outputs();

  /// The first seat; null where there is none.
  [[nodiscard]] wl_seat* seat() const { return seat_.get(); }
  /// Null where the compositor does not have it.
  template <class Global>
  [[nodiscard]] Global* bind(const wl_interface& interface) {
    return static_cast<Global*>(bindGlobal(interface));
  }

 private:
  struct Output;
  struct Listeners;

  struct Free {
    void operator()(wl_display* display) const { wl_display_disconnect(display); }
    void operator()(wl_registry* registry) const { wl_registry_destroy(registry); }
    void operator()(wl_seat* seat) const { wl_seat_destroy(seat); }
    void operator()(zxdg_output_manager_v1* manager) const;
  };

  void* bindGlobal(const wl_interface& interface);
  void addGlobal(std::uint32_t name, const std::string& interface);

  std::unique_ptr<wl_display, Free> display_;
  std::unique_ptr<wl_registry, Free> registry_;
  std::unique_ptr<wl_seat, Free> seat_;
  std::unique_ptr<zxdg_output_manager_v1, Free> outputManager_;
  std::map<std::string, std::uint32_t, std::less<>> globals_;
  std::map<std::uint32_t, std::unique_ptr<Output>> outputs_;
};

}  // namespace harness
