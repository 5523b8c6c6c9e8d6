#pragma once

#include <gio/gio.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "bench/MuteWatch.h"
#include "desktop/harness/WaylandDesk.h"

namespace bench {

/// A compositor with two monitors, pcmanfm-qt's desktop on them, waybar, a sink "out1", windows of
/// other programs on the first monitor, and a Calmdeck whose mode hides those, covers
/// the desktop and mutes. The mode is turned over the bus, as keys and scripts of the user's turn
/// it. The bench's own environment becomes that of the desktop. Everything throws
/// std::runtime_error when what it waits for does not come.
class CompositorDesk {
 public:
  CompositorDesk(harness::Compositor kind, int windows);

  [[nodiscard]] harness::WaylandDesk& desk() { return desk_; }
  [[nodiscard]] harness::Process& program() { return *program_; }

  /// When it was asked for.
  Clock::time_point toggle();
  /// When it was seen to be so; a look at the screen takes up to a frame, 17 ms.
  [[nodiscard]] Clock::time_point awaitSink(bool muted) { return sink_->await(muted); }
  [[nodiscard]] Clock::time_point awaitWindows(bool hidden);
  [[nodiscard]] Clock::time_point awaitCovers(bool covered);

 private:
  struct Release {
    void operator()(GDBusConnection* connection) const { g_object_unref(connection); }
  };

  void startIcons();
  void openWindows(int windows);
  [[nodiscard]] Clock::time_point await(int x, int y,
                                        const std::function<bool(std::uint32_t pixel)>& fact);

  harness::WaylandDesk desk_;
  std::unique_ptr<harness::Process> icons_;
  std::unique_ptr<MuteWatch> sink_;
  std::unique_ptr<GDBusConnection, Release> bus_;
  std::unique_ptr<harness::Process> program_;
  /// The window on top: its colour, and a place in it.
  std::uint32_t top_ = 0;
  std::pair<int, int> onTop_;
};

}  // namespace bench
