#include "desktop/linux/ui/OutsidePresses.h"

#include <xcb/xinput.h>

#include <utility>

#include "desktop/linux/ui/UiLog.h"

namespace linux_desktop {
namespace {

/// Raw events reach everybody even while somebody grabs, and touches exist, from this version on.
constexpr std::uint16_t kMajor = 2;
constexpr std::uint16_t kMinor = 2;

/// Buttons 4 to 7 are the two wheels.
constexpr bool isWheel(std::uint32_t button) {
  return button >= 4 && button <= 7;
}

}  // namespace

OutsidePresses::OutsidePresses(std::unique_ptr<XServer> server, Pressed pressed)
    : server_(std::move(server)),
      pressed_(std::move(pressed)),
      notifier_(xcb_get_file_descriptor(server_->get()), QSocketNotifier::Read) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { read(); });
  select();
}

void OutsidePresses::select() {
  xcb_connection_t* connection = server_->get();
  const auto* extension = xcb_get_extension_data(connection, &xcb_input_id);
  const auto cookie = xcb_input_xi_query_version(connection, kMajor, kMinor);
  const XReply<xcb_input_xi_query_version_reply_t> version(
      xcb_input_xi_query_version_reply(connection, cookie, nullptr));
  if (extension == nullptr || extension->present == 0 || !version ||
      std::pair(version->major_version, version->minor_version) < std::pair(kMajor, kMinor)) {
    qCWarning(lcUi) << "no XInput" << kMajor << "." << kMinor
                    << ": a click on the bare desktop may leave the panel open";
    return;
  }
  extension_ = extension->major_opcode;
  struct {
    xcb_input_event_mask_t head{XCB_INPUT_DEVICE_ALL_MASTER, 1};
    std::uint32_t mask =
        XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_BEGIN;
  } const selection;
  xcb_input_xi_select_events(connection, server_->root(), 1, &selection.head);
  xcb_flush(connection);
}

void OutsidePresses::read() {
  std::optional<xcb_timestamp_t> time;
  std::optional<QPoint> place;
  while (const auto event = server_->nextEvent()) {
    const auto press = timeOfPress(*event);
    if (!press) continue;
    time = press;
    place = pointer();
  }
  if (xcb_connection_has_error(server_->get()) != 0) notifier_.setEnabled(false);
  if (time && place) pressed_(*place, *time);
}

std::optional<xcb_timestamp_t> OutsidePresses::timeOfPress(const xcb_generic_event_t& event) const {
  if ((event.response_type & 0x7f) != XCB_GE_GENERIC) return std::nullopt;
  const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
  if (generic.extension != extension_) return std::nullopt;
  // Presses and touches are laid out alike.
  const auto& raw = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
  if (generic.event_type == XCB_INPUT_RAW_TOUCH_BEGIN) return raw.time;
  if (generic.event_type != XCB_INPUT_RAW_BUTTON_PRESS || isWheel(raw.detail)) return std::nullopt;
  return raw.time;
}

std::optional<QPoint> OutsidePresses::pointer() const {
  const auto cookie = xcb_query_pointer(server_->get(), server_->root());
  const XReply<xcb_query_pointer_reply_t> reply(
      xcb_query_pointer_reply(server_->get(), cookie, nullptr));
  if (!reply) return std::nullopt;
  return QPoint(reply->root_x, reply->root_y);
}

void OutsidePresses::discardPending() {
  // Once the server has answered, what it sent before has arrived.
  static_cast<void>(pointer());
  while (const auto event = server_->nextEvent()) continue;
}

}  // namespace linux_desktop
