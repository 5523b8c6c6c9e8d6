#include "desktop/linux/xserver/XServer.h"

#include <xcb/xinput.h>

#include <QGuiApplication>
#include <algorithm>
#include <iterator>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

/// In items of four bytes.
constexpr std::uint32_t kLongestProperty = 1U << 20;

xcb_screen_t* screenOf(xcb_connection_t* connection, int number) {
  xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; number > 0 && screens.rem > 1; --number) xcb_screen_next(&screens);
  return screens.data;
}

}  // namespace

std::span<const std::uint32_t> XPropertyValue::numbers() const {
  if (!reply_ || reply_->format != 32) return {};
  const auto* items = static_cast<const std::uint32_t*>(xcb_get_property_value(reply_.get()));
  return {items, static_cast<std::size_t>(xcb_get_property_value_length(reply_.get())) / 4};
}

std::optional<std::uint32_t> XPropertyValue::number() const {
  const auto items = numbers();
  return items.empty() ? std::nullopt : std::optional(items.front());
}

bool XPropertyValue::contains(std::uint32_t item) const {
  return std::ranges::find(numbers(), item) != numbers().end();
}

std::vector<std::string> XPropertyValue::texts() const {
  if (!reply_ || reply_->format != 8) return {};
  const std::string all(static_cast<const char*>(xcb_get_property_value(reply_.get())),
                        static_cast<std::size_t>(xcb_get_property_value_length(reply_.get())));
  std::vector<std::string> parts;
  for (std::size_t start = 0; start < all.size();) {
    const std::size_t end = std::min(all.find('\0', start), all.size());
    parts.push_back(all.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

std::string XPropertyValue::text() const {
  std::vector<std::string> parts = texts();
  return parts.empty() ? std::string() : std::move(parts.front());
}

std::unique_ptr<XServer> XServer::connect() {
  if (QGuiApplication::platformName() != QLatin1String("xcb")) return nullptr;
  int screen = 0;
  XConnection connection(xcb_connect(nullptr, &screen));
  if (xcb_connection_has_error(connection.get()) != 0) {
    qCWarning(lcX11) << "no second connection to the X server; the program goes on without it";
    return nullptr;
  }
  return std::unique_ptr<XServer>(new XServer(std::move(connection), screen));
}

xcb_connection_t* XServer::connectionOfQt() {
  return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

XServer::XServer(XConnection connection, int screen)
    : connection_(std::move(connection)), screen_(screen) {
  const xcb_screen_t* info = screenOf(get(), screen);
  root_ = info->root;
  own_ = xcb_generate_id(get());
  const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_create_window(get(), XCB_COPY_FROM_PARENT, own_, root_, -1, -1, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
}

const xcb_screen_t& XServer::screen() const {
  return *screenOf(get(), screen_);
}

xcb_atom_t XServer::atom(std::string_view name) {
  if (const auto known = atoms_.find(name); known != atoms_.end()) return known->second;
  const auto cookie =
      xcb_intern_atom(get(), 0, static_cast<std::uint16_t>(name.size()), name.data());
  const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(get(), cookie, nullptr));
  const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  atoms_.emplace(name, atom);
  return atom;
}

std::vector<XPropertyValue> XServer::read(std::span<const XProperty> properties) {
  const auto ask = [this](const XProperty& property) {
    return xcb_get_property(get(), 0, property.window, property.name, XCB_GET_PROPERTY_TYPE_ANY, 0,
                            kLongestProperty);
  };
  std::vector<XPropertyValue> values;
  for (auto& reply : answersTo(get(), properties, ask, xcb_get_property_reply)) {
    values.emplace_back(std::move(reply));
  }
  return values;
}

std::vector<std::uint32_t> XServer::numbers(xcb_window_t window, std::string_view property) {
  return numbersOf(std::span(&window, 1), property).front();
}

std::optional<std::uint32_t> XServer::number(xcb_window_t window, std::string_view property) {
  return read(std::array{XProperty{window, atom(property)}}).front().number();
}

std::vector<std::vector<std::uint32_t>> XServer::numbersOf(std::span<const xcb_window_t> windows,
                                                           std::string_view property) {
  const xcb_atom_t name = atom(property);
  std::vector<XProperty> properties;
  properties.reserve(windows.size());
  for (const xcb_window_t window : windows) properties.push_back({window, name});
  std::vector<std::vector<std::uint32_t>> results;
  results.reserve(windows.size());
  for (const XPropertyValue& value : read(properties)) {
    const auto items = value.numbers();
    results.emplace_back(items.begin(), items.end());
  }
  return results;
}

void XServer::setNumbers(xcb_window_t window, std::string_view property, xcb_atom_t type,
                         const std::vector<std::uint32_t>& numbers, xcb_connection_t* over) {
  xcb_connection_t* connection = over == nullptr ? get() : over;
  if (numbers.empty()) {
    xcb_delete_property(connection, window, atom(property));
  } else {
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom(property), type, 32,
                        static_cast<std::uint32_t>(numbers.size()), numbers.data());
  }
}

void XServer::askManager(xcb_window_t window, std::string_view request,
                         const std::array<std::uint32_t, 5>& details, xcb_connection_t* over) {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = atom(request);
  std::ranges::copy(details, std::begin(event.data.data32));
  xcb_send_event(over == nullptr ? get() : over, 0, root_,
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&event));
}

std::optional<QRect> XServer::geometry(xcb_window_t window) {
  const auto sizeCookie = xcb_get_geometry(get(), window);
  const auto placeCookie = xcb_translate_coordinates(get(), window, root_, 0, 0);
  const XReply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(get(), sizeCookie, nullptr));
  const XReply<xcb_translate_coordinates_reply_t> place(
      xcb_translate_coordinates_reply(get(), placeCookie, nullptr));
  if (!size || !place) return std::nullopt;
  return QRect(place->dst_x, place->dst_y, size->width, size->height);
}

xcb_window_t XServer::parentOf(xcb_window_t window) {
  const XReply<xcb_query_tree_reply_t> reply(
      xcb_query_tree_reply(get(), xcb_query_tree(get(), window), nullptr));
  return reply ? reply->parent : xcb_window_t{XCB_NONE};
}

std::vector<std::vector<xcb_window_t>> XServer::childrenOf(std::span<const xcb_window_t> parents) {
  const auto ask = [this](xcb_window_t parent) { return xcb_query_tree(get(), parent); };
  std::vector<std::vector<xcb_window_t>> results;
  for (const auto& reply : answersTo(get(), parents, ask, xcb_query_tree_reply)) {
    results.emplace_back();
    if (!reply) continue;
    const xcb_window_t* children = xcb_query_tree_children(reply.get());
    results.back().assign(children, children + xcb_query_tree_children_length(reply.get()));
  }
  return results;
}

std::string XServer::managerName() {
  const auto check = number(root_, "_NET_SUPPORTING_WM_CHECK");
  if (!check) return {};
  return read(std::array{XProperty{*check, atom("_NET_WM_NAME")}}).front().text();
}

bool XServer::managerKnows(std::string_view hint) {
  return std::ranges::count(numbers(root_, "_NET_SUPPORTED"), atom(hint)) > 0;
}

bool XServer::isComposited() {
  // EWMH 1.5: the compositing manager of a screen owns this selection.
  return ownerOf(atomOfScreen("_NET_WM_CM_S")) != XCB_NONE;
}

xcb_window_t XServer::ownerOf(xcb_atom_t selection) {
  const XReply<xcb_get_selection_owner_reply_t> reply(
      xcb_get_selection_owner_reply(get(), xcb_get_selection_owner(get(), selection), nullptr));
  return reply ? reply->owner : xcb_window_t{XCB_NONE};
}

std::optional<std::uint8_t> XServer::inputExtension() {
  // Raw events reach everybody even while somebody grabs, and touches exist, from this version on.
  // The server holds a connection to the first version that it asks for.
  constexpr std::uint16_t kMajor = 2;
  constexpr std::uint16_t kMinor = 2;
  const auto* extension = xcb_get_extension_data(get(), &xcb_input_id);
  if (extension == nullptr || extension->present == 0) return std::nullopt;
  const XReply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
      get(), xcb_input_xi_query_version(get(), kMajor, kMinor), nullptr));
  if (!version ||
      std::pair(version->major_version, version->minor_version) < std::pair(kMajor, kMinor)) {
    return std::nullopt;
  }
  return extension->major_opcode;
}

xcb_timestamp_t XServer::time() {
  // Adding nothing to a property changes nothing, but is announced with the time.
  xcb_change_property(get(), XCB_PROP_MODE_APPEND, own_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0,
                      nullptr);
  xcb_flush(get());
  while (XReply<xcb_generic_event_t> event{xcb_wait_for_event(get())}) {
    const auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event.get());
    if (typeOf(*event) == XCB_PROPERTY_NOTIFY && change->window == own_) {
      return change->time;
    }
    kept_.push_back(std::move(event));
  }
  return XCB_CURRENT_TIME;
}

XReply<xcb_generic_event_t> XServer::nextEvent() {
  if (kept_.empty()) return XReply<xcb_generic_event_t>(xcb_poll_for_event(get()));
  XReply<xcb_generic_event_t> event = std::move(kept_.front());
  kept_.pop_front();
  return event;
}

}  // namespace linux_desktop
