#include "desktop/linux/x11/XScreens.h"

#include <xcb/randr.h>

#include <chrono>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

/// While a monitor is resized the server takes it away and brings it back a quarter of a second
/// later.
constexpr std::chrono::milliseconds kSettling{300};

QString nameOf(xcb_connection_t* connection, xcb_atom_t atom) {
  const XReply<xcb_get_atom_name_reply_t> reply(
      xcb_get_atom_name_reply(connection, xcb_get_atom_name(connection, atom), nullptr));
  if (!reply) return {};
  return QString::fromUtf8(xcb_get_atom_name_name(reply.get()),
                           xcb_get_atom_name_name_length(reply.get()));
}

std::vector<Monitor> monitorsOf(XServer& server) {
  xcb_connection_t* connection = server.get();
  const xcb_window_t root = server.root();
  const XReply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
      connection, xcb_randr_get_monitors(connection, root, 1), nullptr));
  std::vector<Monitor> monitors;
  auto info = reply ? xcb_randr_get_monitors_monitors_iterator(reply.get())
                    : xcb_randr_monitor_info_iterator_t{};
  for (; info.rem > 0; xcb_randr_monitor_info_next(&info)) {
    const QRect pixels(info.data->x, info.data->y, info.data->width, info.data->height);
    if (pixels.isEmpty()) continue;
    monitors.insert(info.data->primary != 0 ? monitors.begin() : monitors.end(),
                    Monitor{nameOf(connection, info.data->name), pixels});
  }
  if (!monitors.empty()) return monitors;
  const auto whole = server.geometry(root);
  return {{QStringLiteral("screen"), whole.value_or(QRect(0, 0, 1, 1))}};
}

}  // namespace

XScreens::XScreens(XEvents& events)
    : MonitorScreens([&server = events.server()] { return monitorsOf(server); }, kSettling) {
  watchRandr(events);
  // A monitor that is set on a virtual server shows only by the root window's own event.
  watches_.push_back(events.watch(
      events.server().root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
      [this](const xcb_generic_event_t& event) {
        if (typeOf(event) != XCB_CONFIGURE_NOTIFY) return;
        // Others may watch its children, too.
        const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        if (change.window == change.event) mayHaveChanged();
      }));
  readNow();
}

void XScreens::watchRandr(XEvents& events) {
  xcb_connection_t* connection = events.server().get();
  const auto* extension = xcb_get_extension_data(connection, &xcb_randr_id);
  if (extension == nullptr || extension->present == 0) {
    qCWarning(lcX11, "no RandR: a monitor that comes or goes is not noticed");
    return;
  }
  xcb_randr_select_input(connection, events.server().root(),
                         XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                             XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
  for (const int kind : {XCB_RANDR_SCREEN_CHANGE_NOTIFY, XCB_RANDR_NOTIFY}) {
    watches_.push_back(
        events.watchExtension(static_cast<std::uint8_t>(extension->first_event + kind),
                              [this](const xcb_generic_event_t&) { mayHaveChanged(); }));
  }
}

}  // namespace linux_desktop
