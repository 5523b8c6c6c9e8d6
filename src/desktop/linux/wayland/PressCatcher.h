#pragma once

#include <QPoint>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/linux/wayland/PointerSeat.h"
#include "desktop/linux/wayland/WaylandOutputs.h"

namespace linux_desktop {

/// What catchers are made of.
struct CatcherParts {
  WaylandProxy<wl_compositor> compositor;
  WaylandProxy<wl_shm> shm;
  WaylandProxy<wp_viewporter> viewporter;
  WaylandProxy<zwlr_layer_shell_v1> shell;

  explicit CatcherParts(WaylandConnection& connection);
  [[nodiscard]] bool areThere() const { return compositor && shm && viewporter && shell; }
};

/// Clear glass over all outputs and all windows, panels too, for as long as it lives: where the
/// pointer is and what is pressed can be known in no other way. A press ends at the glass.
class PressCatcher {
 public:
  using Pressed = std::function<void(std::uint32_t time)>;

  /// All outlive this.
  PressCatcher(const CatcherParts& parts, WaylandOutputs& outputs, PointerSeat& seat);
  ~PressCatcher();
  PressCatcher(const PressCatcher&) = delete;
  PressCatcher& operator=(const PressCatcher&) = delete;

  /// Both are called out of the event loop: with each press of a button or a finger, and when the
  /// pointer has come onto the glass.
  void setPressed(Pressed pressed) { pressed_ = std::move(pressed); }
  void setEntered(std::function<void()> entered) { entered_ = std::move(entered); }
  /// Behind what is on the layer above all others, from now on: in one layer compositors differ in
  /// whether the last one or the first is in front, so that panels may lie in front of it too.
  void goBehindPopovers();
  /// Where the pointer is, in points of the whole desktop; none while it is on something else, or
  /// there is no pointer.
  [[nodiscard]] std::optional<QPoint> pointer() const;

 private:
  class Pane;

  void coverAll();

  const CatcherParts& parts_;
  WaylandOutputs& outputs_;
  PointerSeat& seat_;
  std::uint32_t level_ = ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY;
  std::vector<std::unique_ptr<Pane>> panes_;
  Pressed pressed_;
  std::function<void()> entered_;
  QObject context_;
};

}  // namespace linux_desktop
