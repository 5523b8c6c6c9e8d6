#include "desktop/linux/x11/XPressWatch.h"

#include <xcb/xinput.h>

#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

/// Buttons 4 to 7 are the two wheels.
constexpr bool isWheel(std::uint32_t button) {
  return button >= 4 && button <= 7;
}

/// The server's time begins anew every 49 days.
constexpr bool isAfter(xcb_timestamp_t time, xcb_timestamp_t other) {
  return static_cast<std::int32_t>(time - other) > 0;
}

}  // namespace

XPressWatch::XPressWatch(XEvents& events, xcb_window_t window, IsOnPanel isOnPanel,
                         OwnWindows::Pressed pressed)
    : events_(events),
      window_(window),
      isOnPanel_(std::move(isOnPanel)),
      pressed_(std::move(pressed)),
      extension_(events.server().inputExtension()) {
  if (!extension_) {
    qCWarning(lcX11, "no XInput 2.2: a click on the bare desktop may leave the panel open");
    return;
  }
  watch_ = events_.watchExtension(XCB_GE_GENERIC,
                                  [this](const xcb_generic_event_t& event) { handle(event); });
  select(XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_BEGIN);
}

XPressWatch::~XPressWatch() {
  if (watch_) select(0);
}

void XPressWatch::select(std::uint32_t mask) {
  struct {
    xcb_input_event_mask_t head{XCB_INPUT_DEVICE_ALL_MASTER, 1};
    std::uint32_t mask;
  } const selection{.mask = mask};
  xcb_input_xi_select_events(events_.server().get(), events_.server().root(), 1, &selection.head);
  xcb_flush(events_.server().get());
}

void XPressWatch::handle(const xcb_generic_event_t& event) {
  const auto time = timeOfPress(event);
  if (!time || (discarded_ && !isAfter(*time, *discarded_))) return;
  // A raw press does not say where it was.
  const auto place = pointer();
  const auto own = events_.server().geometry(window_);
  if (place && !(own && own->contains(*place))) pressed_({*time, isOnPanel_(*place)});
}

std::optional<xcb_timestamp_t> XPressWatch::timeOfPress(const xcb_generic_event_t& event) const {
  const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
  if (generic.extension != extension_) return std::nullopt;
  // Presses and touches are laid out alike.
  const auto& raw = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
  if (generic.event_type == XCB_INPUT_RAW_TOUCH_BEGIN) return raw.time;
  if (generic.event_type != XCB_INPUT_RAW_BUTTON_PRESS || isWheel(raw.detail)) return std::nullopt;
  return raw.time;
}

std::optional<QPoint> XPressWatch::pointer() const {
  XServer& server = events_.server();
  const XReply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
      server.get(), xcb_query_pointer(server.get(), server.root()), nullptr));
  if (!reply) return std::nullopt;
  return QPoint(reply->root_x, reply->root_y);
}

void XPressWatch::discardPending() {
  discarded_ = events_.server().time();
}

}  // namespace linux_desktop
