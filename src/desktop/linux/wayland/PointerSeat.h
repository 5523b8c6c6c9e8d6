#pragma once

#include <wayland-cursor.h>

#include <QPointF>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/linux/wayland/WaylandConnection.h"

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

}  // namespace linux_desktop
