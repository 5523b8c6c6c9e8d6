#include "desktop/linux/wayland/PressCatcher.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace linux_desktop {
namespace {

/// The last in which a pointer has no more to say than is told here.
constexpr std::uint32_t kSeatVersion = 5;
constexpr int kArrowSize = 24;

PointerSeat::Place placeOf(wl_surface* surface, wl_fixed_t x, wl_fixed_t y) {
  return {surface, {wl_fixed_to_double(x), wl_fixed_to_double(y)}};
}

using Layer = LayerSheet::Layer;

constexpr const char* kKind = "calmdeck-catcher";
/// Until it is done without.
constexpr std::chrono::milliseconds kArrival{500};

}  // namespace

PointerSeat::PointerSeat(WaylandConnection& connection)
    : seat_(connection.bindFirst<wl_seat>(wl_seat_interface, kSeatVersion)) {
  static constexpr wl_seat_listener kListener{[](void* self, wl_seat*, std::uint32_t has) {
                                                static_cast<PointerSeat*>(self)->has_ = has;
                                                static_cast<PointerSeat*>(self)->follow();
                                              },
                                              [](void*, wl_seat*, const char*) {}};
  if (!seat_) return;
  wl_seat_add_listener(seat_.get(), &kListener, this);
  connection.roundTrip();
}

PointerSeat::~PointerSeat() = default;

void PointerSeat::listen(wl_compositor& compositor, wl_shm& shm, Reports reports) {
  reports_ = std::move(reports);
  const int size = qEnvironmentVariableIntValue("XCURSOR_SIZE");
  theme_.reset(wl_cursor_theme_load(qgetenv("XCURSOR_THEME").constData(),
                                    size > 0 ? size : kArrowSize, &shm));
  wl_cursor* cursor = theme_ ? wl_cursor_theme_get_cursor(theme_.get(), "left_ptr") : nullptr;
  image_ = cursor == nullptr ? nullptr : cursor->images[0];
  arrow_.reset(wl_compositor_create_surface(&compositor));
  follow();
}

void PointerSeat::stop() {
  reports_.reset();
  pointer_.reset();
  touch_.reset();
  place_.reset();
  arrow_.reset();
  theme_.reset();
  image_ = nullptr;
}

void PointerSeat::follow() {
  if (!reports_) return;
  const bool hasTouch = (has_ & WL_SEAT_CAPABILITY_TOUCH) != 0;
  if (!hasPointer()) {
    pointer_.reset();
    place_.reset();
  } else if (!pointer_) {
    watchPointer();
  }
  if (!hasTouch) {
    touch_.reset();
  } else if (!touch_) {
    watchTouch();
  }
}

void PointerSeat::watchPointer() {
  static constexpr auto to = [](void* self) -> PointerSeat& {
    return *static_cast<PointerSeat*>(self);
  };
  // Newer versions of it have members that nobody calls here.
  static constexpr wl_pointer_listener kListener = [] {
    wl_pointer_listener all{};
    all.enter = [](void* self, wl_pointer*, std::uint32_t serial, wl_surface* surface, wl_fixed_t x,
                   wl_fixed_t y) {
      to(self).place_ = placeOf(surface, x, y);
      to(self).showArrow(serial);
      to(self).reports_->entered();
    };
    all.leave = [](void* self, wl_pointer*, std::uint32_t, wl_surface*) {
      to(self).place_.reset();
    };
    all.motion = [](void* self, wl_pointer*, std::uint32_t, wl_fixed_t x, wl_fixed_t y) {
      if (to(self).place_) to(self).place_ = placeOf(to(self).place_->surface, x, y);
    };
    all.button = [](void* self, wl_pointer*, std::uint32_t, std::uint32_t time, std::uint32_t,
                    std::uint32_t state) {
      if (state == WL_POINTER_BUTTON_STATE_PRESSED) to(self).reports_->pressed(time);
    };
    all.axis = [](void*, wl_pointer*, std::uint32_t, std::uint32_t, wl_fixed_t) {};
    all.frame = [](void*, wl_pointer*) {};
    all.axis_source = [](void*, wl_pointer*, std::uint32_t) {};
    all.axis_stop = [](void*, wl_pointer*, std::uint32_t, std::uint32_t) {};
    all.axis_discrete = [](void*, wl_pointer*, std::uint32_t, std::int32_t) {};
    return all;
  }();
  pointer_.reset(wl_seat_get_pointer(seat_.get()));
  wl_pointer_add_listener(pointer_.get(), &kListener, this);
}

void PointerSeat::watchTouch() {
  static constexpr wl_touch_listener kListener{
      .down = [](void* self, wl_touch*, std::uint32_t, std::uint32_t time, wl_surface*,
                 std::int32_t, wl_fixed_t,
                 wl_fixed_t) { static_cast<PointerSeat*>(self)->reports_->pressed(time); },
      .up = [](void*, wl_touch*, std::uint32_t, std::uint32_t, std::int32_t) {},
      .motion = [](void*, wl_touch*, std::uint32_t, std::int32_t, wl_fixed_t, wl_fixed_t) {},
      .frame = [](void*, wl_touch*) {},
      .cancel = [](void*, wl_touch*) {},
      .shape = [](void*, wl_touch*, std::int32_t, wl_fixed_t, wl_fixed_t) {},
      .orientation = [](void*, wl_touch*, std::int32_t, wl_fixed_t) {}};
  touch_.reset(wl_seat_get_touch(seat_.get()));
  wl_touch_add_listener(touch_.get(), &kListener, this);
}

void PointerSeat::showArrow(std::uint32_t serial) {
  if (image_ == nullptr) return;
  wl_surface_attach(arrow_.get(), wl_cursor_image_get_buffer(image_), 0, 0);
  wl_surface_damage(arrow_.get(), 0, 0, static_cast<int>(image_->width),
                    static_cast<int>(image_->height));
  wl_surface_commit(arrow_.get());
  wl_pointer_set_cursor(pointer_.get(), serial, arrow_.get(), static_cast<int>(image_->hotspot_x),
                        static_cast<int>(image_->hotspot_y));
}

PressCatcher::PressCatcher(const LayerShell& shell, WaylandOutputs& outputs, PointerSeat& seat)
    : shell_(shell), outputs_(outputs), seat_(seat), clear_(ShmPicture::clear(*shell.shm)) {
  // First, so that it hears of the pointer that the glass slides under.
  seat_.listen(*shell.compositor, *shell.shm,
               {.pressed =
                    [this](std::uint32_t time) {
                      if (pressed_) pressed_(time);
                    },
                .entered =
                    [this] {
                      if (entered_) entered_();
                    }});
  coverAll();
  QObject::connect(&outputs, &WaylandOutputs::changed, &context_, [this] { coverAll(); });
  QObject::connect(&outputs, &WaylandOutputs::goes, &context_, [this](const WaylandOutput& output) {
    std::erase_if(panes_, [&](const auto& pane) { return &pane->output == &output; });
  });
}

PressCatcher::~PressCatcher() {
  seat_.stop();
}

void PressCatcher::coverAll() {
  if (!clear_) return;
  for (const WaylandOutput* output : outputs_.all()) {
    const bool isCovered =
        std::ranges::any_of(panes_, [output](const auto& pane) { return &pane->output == output; });
    if (!isCovered) panes_.push_back(std::make_unique<Pane>(shell_, *output, clear_));
  }
}

PressCatcher::Pane::Pane(const LayerShell& shell, const WaylandOutput& of,
                         const std::shared_ptr<const ShmPicture>& clear)
    : output(of),
      // What the compositor takes away goes with its output.
      sheet(shell, Layer::Front, kKind, of, clear, {[this] { isThere = true; }, {}}) {}

void PressCatcher::awaitArrival() const {
  shell_.connection.waitFor(
      [this] {
        return std::ranges::all_of(panes_, [](const auto& pane) { return pane->isThere; });
      },
      kArrival);
}

void PressCatcher::comeAnew() {
  for (const auto& pane : panes_) {
    pane->sheet.moveTo(Layer::Panels);
    pane->sheet.moveTo(Layer::Front);
  }
}

std::optional<QPoint> PressCatcher::pointer() const {
  const auto& place = seat_.pointer();
  if (!place) return std::nullopt;
  const auto pane = std::ranges::find(panes_, place->surface,
                                      [](const auto& one) { return one->sheet.surface(); });
  if (pane == panes_.end()) return std::nullopt;
  return (*pane)->output.monitor().points.topLeft() + place->point.toPoint();
}

}  // namespace linux_desktop
