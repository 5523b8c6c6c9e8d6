#pragma once

#include <wayland-cursor.h>

#include <QPoint>
#include <QPointF>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/linux/wayland/LayerSurface.h"
#include "desktop/linux/wayland/WaylandConnection.h"
#include "desktop/linux/wayland/WaylandOutputs.h"

namespace linux_desktop {

/// The pointer and the fingers of the user as our own surfaces feel them, while somebody listens.
/// Main thread only.
class PointerSeat {
 public:
  struct Place {
    wl_surface* surface = nullptr;
    QPointF point;
  };

  /// `connection` outlives this.
  explicit PointerSeat(WaylandConnection& connection);
  ~PointerSeat();
  PointerSeat(const PointerSeat&) = delete;
  PointerSeat& operator=(const PointerSeat&) = delete;

  struct Reports {
    /// With each press of a button or a finger on a surface of ours.
    std::function<void(std::uint32_t time)> pressed;
    /// The pointer has come onto a surface of ours.
    std::function<void()> entered;
  };
  /// Reports out of the event loop, until stop().
  void listen(wl_compositor& compositor, wl_shm& shm, Reports reports);
  void stop();
  /// Whether there is a pointer at all.
  [[nodiscard]] bool hasPointer() const { return (has_ & WL_SEAT_CAPABILITY_POINTER) != 0; }
  /// Where the pointer is, on a surface of ours; none while it is elsewhere or nobody listens.
  [[nodiscard]] const std::optional<Place>& pointer() const { return place_; }

 private:
  struct DestroyTheme {
    void operator()(wl_cursor_theme* theme) const { wl_cursor_theme_destroy(theme); }
  };

  void follow();
  void watchPointer();
  void watchTouch();
  /// A pointer has the shape that the surface below it asks for, or else none.
  void showArrow(std::uint32_t serial);

  WaylandProxy<wl_seat> seat_;
  std::uint32_t has_ = 0;
  std::optional<Reports> reports_;
  WaylandProxy<wl_pointer> pointer_;
  WaylandProxy<wl_touch> touch_;
  std::optional<Place> place_;
  std::unique_ptr<wl_cursor_theme, DestroyTheme> theme_;
  WaylandProxy<wl_surface> arrow_;
  wl_cursor_image* image_ = nullptr;
};

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
