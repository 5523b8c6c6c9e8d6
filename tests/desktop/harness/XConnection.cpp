#include "desktop/harness/XConnection.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace harness {

XConnection::XConnection(const std::string& display)
    : connection_(xcb_connect(display.c_str(), nullptr)) {
  if (xcb_connection_has_error(connection_) != 0) {
    xcb_disconnect(connection_);
    throw std::runtime_error("no X server at " + display);
  }
  root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
}

XConnection::~XConnection() {
  xcb_disconnect(connection_);
}

Rect XConnection::screenArea() const {
  const XReply<xcb_get_geometry_reply_t> reply(
      xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, root_), nullptr));
  return reply ? Rect{0, 0, reply->width, reply->height} : Rect{};
}

xcb_atom_t XConnection::atom(std::string_view name) const {
  if (const auto known = atoms_.find(name); known != atoms_.end()) return known->second;
  const auto cookie =
      xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
  const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  atoms_.emplace(name, atom);
  return atom;
}

std::string XConnection::atomName(xcb_atom_t atom) const {
  const XReply<xcb_get_atom_name_reply_t> reply(
      xcb_get_atom_name_reply(connection_, xcb_get_atom_name(connection_, atom), nullptr));
  if (!reply) return {};
  return {xcb_get_atom_name_name(reply.get()),
          static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

XReply<xcb_get_property_reply_t> XConnection::property(xcb_window_t window,
                                                       std::string_view name) const {
  constexpr std::uint32_t kLongest = 1U << 16U;
  const auto cookie =
      xcb_get_property(connection_, 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, kLongest);
  return XReply<xcb_get_property_reply_t>(xcb_get_property_reply(connection_, cookie, nullptr));
}

std::vector<std::uint32_t> XConnection::numbers(xcb_window_t window, std::string_view name) const {
  const auto reply = property(window, name);
  if (!reply || reply->format != 32) return {};
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {first, first + reply->value_len};
}

std::optional<std::uint32_t> XConnection::number(xcb_window_t window, std::string_view name) const {
  const std::vector<std::uint32_t> all = numbers(window, name);
  return all.empty() ? std::nullopt : std::optional(all.front());
}

std::string XConnection::text(xcb_window_t window, std::string_view name) const {
  const auto reply = property(window, name);
  if (!reply || reply->format != 8) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

void XConnection::create(xcb_window_t id, const XWindow& window) const {
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
  auto depth = xcb_screen_allowed_depths_iterator(screen);
  constexpr std::uint8_t kWithAlpha = 32;
  while (depth.rem > 0 && depth.data->depth != (window.colour ? screen->root_depth : kWithAlpha))
    xcb_depth_next(&depth);
  if (depth.rem == 0) throw std::runtime_error("no windows with transparency here");
  const xcb_visualid_t visual =
      window.colour ? screen->root_visual : xcb_depth_visuals(depth.data)->visual_id;
  const xcb_colormap_t colours = xcb_generate_id(connection_);
  xcb_create_colormap(connection_, XCB_COLORMAP_ALLOC_NONE, colours, root_, visual);
  const std::array<std::uint32_t, 3> values{window.colour.value_or(0), 0, colours};
  const Rect& area = window.area;
  xcb_create_window(connection_, depth.data->depth, id, root_, static_cast<std::int16_t>(area.x),
                    static_cast<std::int16_t>(area.y), static_cast<std::uint16_t>(area.width),
                    static_cast<std::uint16_t>(area.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                    visual, XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_COLORMAP,
                    values.data());
}

xcb_window_t XConnection::open(const XWindow& window) const {
  const xcb_window_t id = xcb_generate_id(connection_);
  create(id, window);
  const auto set = [&](xcb_atom_t name, xcb_atom_t type, std::uint8_t format, std::size_t length,
                       const void* data) {
    if (length > 0)
      xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, id, name, type, format,
                          static_cast<std::uint32_t>(length), data);
  };
  const auto setText = [&](xcb_atom_t name, const std::string& text) {
    set(name, XCB_ATOM_STRING, 8, text.size(), text.data());
  };
  const auto setAtom = [&](const std::string& name, const std::string& value) {
    const xcb_atom_t atom = this->atom(name + "_" + value);
    set(this->atom(name), XCB_ATOM_ATOM, 32, value.empty() ? 0 : 1, &atom);
  };
  setText(XCB_ATOM_WM_NAME, window.name);
  setText(XCB_ATOM_WM_CLASS, "instance" + std::string(1, '\0') + window.className + '\0');
  setText(atom("_GTK_APPLICATION_ID"), window.gtkApplicationId);
  setAtom("_NET_WM_WINDOW_TYPE", window.type);
  setAtom("_NET_WM_STATE", window.state);
  set(XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, 32, window.transientFor == XCB_NONE ? 0 : 1,
      &window.transientFor);
  constexpr std::array<std::uint32_t, 18> kUserPosition{1};  // ICCCM 4.1.2.3
  set(XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32, kUserPosition.size(),
      kUserPosition.data());
  xcb_map_window(connection_, id);
  xcb_flush(connection_);
  return id;
}

bool XConnection::hasOwner(std::string_view selection) const {
  const XReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
      connection_, xcb_get_selection_owner(connection_, atom(selection)), nullptr));
  return reply && reply->owner != XCB_NONE;
}

void XConnection::send(xcb_window_t to, std::uint32_t mask, xcb_window_t window,
                       std::string_view message, const std::vector<std::uint32_t>& data) const {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = atom(message);
  std::copy_n(data.begin(), std::min<std::size_t>(data.size(), 5), std::begin(event.data.data32));
  xcb_send_event(connection_, 0, to, mask, reinterpret_cast<const char*>(&event));
  xcb_flush(connection_);
}

void XConnection::askWindowManager(xcb_window_t window, std::string_view message,
                                   const std::vector<std::uint32_t>& data) const {
  send(root_, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY, window,
       message, data);
}

void XConnection::askToClose(xcb_window_t window) const {
  send(window, XCB_EVENT_MASK_NO_EVENT, window, "WM_PROTOCOLS", {atom("WM_DELETE_WINDOW")});
}

}  // namespace harness
