#pragma once

#include <QPoint>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/linux/wayland/LayerSurface.h"
#include "desktop/linux/wayland/PointerSeat.h"
#include "desktop/linux/wayland/WaylandOutputs.h"

namespace linux_desktop {

/// Clear glass over all outputs and all windows, panels too, for as long as it lives: where the
/// pointer is and what is pressed can be known in no other way. A press ends at the glass.
class PressCatcher {
 public:
  using Pressed = std::function<void(std::uint32_t time)>;

  /// All outlive this.
  PressCatcher(const LayerShell& shell, WaylandOutputs& outputs, PointerSeat& seat);
  ~PressCatcher();
  PressCatcher(const PressCatcher&) = delete;
  PressCatcher& operator=(const PressCatcher&) = delete;

  /// Both are called out of the event loop: with each press of a button or a finger, and when the
  /// pointer has come onto the glass.
  void setPressed(Pressed pressed) { pressed_ = std::move(pressed); }
  void setEntered(std::function<void()> entered) { entered_ = std::move(entered); }
  /// Returns when it lies over everything, at the latest within half a second: what comes to the
  /// front after that lies in front of it, where of two that came the last is in front.
  void awaitArrival() const;
  /// As if it came now: behind all in the front that were there before, where the first is in
  /// front.
  void comeAnew();
  /// Where the pointer is, in points of the whole desktop; none while it is on something else, or
  /// there is no pointer.
  [[nodiscard]] std::optional<QPoint> pointer() const;

 private:
  /// The glass over one output.
  struct Pane {
    Pane(const LayerShell& shell, const WaylandOutput& of,
         const std::shared_ptr<const ShmPicture>& clear);

    const WaylandOutput& output;
    bool isThere = false;
    LayerSheet sheet;
  };

  void coverAll();

  const LayerShell& shell_;
  WaylandOutputs& outputs_;
  PointerSeat& seat_;
  std::shared_ptr<const ShmPicture> clear_;
  std::vector<std::unique_ptr<Pane>> panes_;
  Pressed pressed_;
  std::function<void()> entered_;
  QObject context_;
};

}  // namespace linux_desktop
