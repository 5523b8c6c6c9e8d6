#include "desktop/linux/x11/XScreens.h"

#include <xcb/randr.h>

#include <algorithm>
#include <chrono>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

/// While a monitor is resized the server takes it away and brings it back a quarter of a second
/// later.
constexpr std::chrono::milliseconds kSettling{300};

std::string atomName(xcb_connection_t* connection, xcb_get_atom_name_cookie_t cookie) {
  const XReply<xcb_get_atom_name_reply_t> reply(
      xcb_get_atom_name_reply(connection, cookie, nullptr));
  if (!reply) return {};
  return {xcb_get_atom_name_name(reply.get()),
          static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

}  // namespace

XScreens::XScreens(XEvents& events) : events_(events) {
  settling_.setSingleShot(true);
  settling_.setInterval(kSettling);
  QObject::connect(&settling_, &QTimer::timeout, &settling_, [this] { settled(); });
  watchRandr();
  // A monitor that is set on a virtual server shows only by the root window's own event.
  watches_.push_back(events_.watch(
      events_.server().root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
      [this](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != XCB_CONFIGURE_NOTIFY) return;
        // Others may watch its children, too.
        const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        if (change.window == change.event) settling_.start();
      }));
  monitors_ = read();
}

void XScreens::watchRandr() {
  xcb_connection_t* connection = events_.server().get();
  const auto* extension = xcb_get_extension_data(connection, &xcb_randr_id);
  if (extension == nullptr || extension->present == 0) {
    qCWarning(lcX11, "no RandR: a monitor that comes or goes is not noticed");
    return;
  }
  xcb_randr_select_input(connection, events_.server().root(),
                         XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                             XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
  for (const int kind : {XCB_RANDR_SCREEN_CHANGE_NOTIFY, XCB_RANDR_NOTIFY}) {
    watches_.push_back(
        events_.watchExtension(static_cast<std::uint8_t>(extension->first_event + kind),
                               [this](const xcb_generic_event_t&) { settling_.start(); }));
  }
}

std::vector<Monitor> XScreens::read() const {
  xcb_connection_t* connection = events_.server().get();
  const xcb_window_t root = events_.server().root();
  const XReply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
      connection, xcb_randr_get_monitors(connection, root, 1), nullptr));
  std::vector<Monitor> monitors;
  std::vector<xcb_get_atom_name_cookie_t> names;
  if (reply) {
    auto info = xcb_randr_get_monitors_monitors_iterator(reply.get());
    for (; info.rem > 0; xcb_randr_monitor_info_next(&info)) {
      const QRect pixels(info.data->x, info.data->y, info.data->width, info.data->height);
      if (pixels.isEmpty()) continue;
      names.push_back(xcb_get_atom_name(connection, info.data->name));
      // The primary one goes to the front.
      const auto place = info.data->primary != 0 ? monitors.begin() : monitors.end();
      const auto index = place - monitors.begin();
      monitors.insert(place, {{}, pixels});
      std::rotate(names.begin() + index, names.end() - 1, names.end());
    }
  }
  for (std::size_t i = 0; i < monitors.size(); ++i) {
    monitors[i].name = QString::fromStdString(atomName(connection, names[i]));
  }
  if (!monitors.empty()) return monitors;
  const auto whole = events_.server().geometry(root);
  return {{QStringLiteral("screen"), whole.value_or(QRect(0, 0, 1, 1))}};
}

void XScreens::settled() {
  std::vector<Monitor> now = read();
  if (now == monitors_) return;
  monitors_ = std::move(now);
  if (client_ != nullptr) client_->screenParametersDidChange();
}

std::vector<platform::port::ScreenInfo> XScreens::screens() const {
  const int bottom = monitors_.front().pixels.y() + monitors_.front().pixels.height();
  const int left = monitors_.front().pixels.x();
  std::vector<platform::port::ScreenInfo> screens;
  for (const Monitor& monitor : monitors_) {
    const QRect& area = monitor.pixels;
    screens.push_back(
        {monitor.name.toStdString(),
         platform::NSRect{static_cast<double>(area.x() - left),
                          static_cast<double>(bottom - area.y() - area.height()),
                          static_cast<double>(area.width()), static_cast<double>(area.height())},
         1});
  }
  return screens;
}

const Monitor* XScreens::monitorNamed(const platform::port::ScreenId& id) const {
  const auto found = std::ranges::find(monitors_, QString::fromStdString(id), &Monitor::name);
  return found == monitors_.end() ? nullptr : &*found;
}

QRect XScreens::toPixels(const platform::NSRect& frame) const {
  const QRect& first = monitors_.front().pixels;
  const int bottom = first.y() + first.height();
  return {static_cast<int>(frame.x) + first.x(),
          bottom - static_cast<int>(frame.y) - static_cast<int>(frame.height),
          static_cast<int>(frame.width), static_cast<int>(frame.height)};
}

}  // namespace linux_desktop
