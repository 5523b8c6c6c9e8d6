#include "desktop/harness/WindowList.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace harness {

namespace {

// Root, the window manager's frame, at most two more around the client's window.
constexpr int kDeepestClient = 4;
constexpr std::uint32_t kFromPager = 2;  // the source indication of a task bar

std::pair<std::string, std::string> splitClass(const std::string& text) {
  const std::size_t end = text.find('\0');
  if (end == std::string::npos) return {text, {}};
  return {text.substr(0, end), std::string(text.c_str() + end + 1)};
}

}  // namespace

bool WindowInfo::has(std::string_view state) const {
  return std::find(states.begin(), states.end(), state) != states.end();
}

WindowTest ofClass(std::string name) {
  return [name = std::move(name)](const WindowInfo& window) {
    return window.className == name || window.instance == name;
  };
}

void WindowList::collect(xcb_window_t parent, int depth, std::vector<xcb_window_t>& found) const {
  const XReply<xcb_query_tree_reply_t> tree(
      xcb_query_tree_reply(x_.get(), xcb_query_tree(x_.get(), parent), nullptr));
  if (!tree) return;
  const xcb_window_t* child = xcb_query_tree_children(tree.get());
  for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i, ++child) {
    if (!x_.text(*child, "WM_CLASS").empty() || !x_.text(*child, "WM_NAME").empty())
      found.push_back(*child);
    // Some window managers name their frames too, so that only WM_STATE tells a client's window.
    if (depth < kDeepestClient && x_.numbers(*child, "WM_STATE").empty())
      collect(*child, depth + 1, found);
  }
}

std::vector<WindowInfo> WindowList::all() const {
  std::vector<xcb_window_t> ids;
  collect(x_.root(), 1, ids);
  std::vector<WindowInfo> windows;
  for (const xcb_window_t id : ids) {
    if (auto window = info(id)) windows.push_back(std::move(*window));
  }
  return windows;
}

std::optional<WindowInfo> WindowList::find(const WindowTest& test) const {
  for (WindowInfo& window : all()) {
    if (test(window)) return std::move(window);
  }
  return std::nullopt;
}

std::set<xcb_window_t> WindowList::viewable() const {
  std::set<xcb_window_t> ids;
  for (const WindowInfo& window : all())
    if (window.viewable) ids.insert(window.id);
  return ids;
}

std::optional<WindowInfo> WindowList::findViewable(const WindowTest& test) const {
  return find([&](const WindowInfo& window) { return window.viewable && test(window); });
}

std::optional<WindowInfo> WindowList::info(xcb_window_t window) const {
  const auto geometryCookie = xcb_get_geometry(x_.get(), window);
  const auto originCookie = xcb_translate_coordinates(x_.get(), window, x_.root(), 0, 0);
  const auto attributesCookie = xcb_get_window_attributes(x_.get(), window);
  const XReply<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(x_.get(), geometryCookie, nullptr));
  const XReply<xcb_translate_coordinates_reply_t> origin(
      xcb_translate_coordinates_reply(x_.get(), originCookie, nullptr));
  const XReply<xcb_get_window_attributes_reply_t> attributes(
      xcb_get_window_attributes_reply(x_.get(), attributesCookie, nullptr));
  if (!geometry || !origin || !attributes) return std::nullopt;

  WindowInfo info;
  info.id = window;
  info.name = x_.text(window, "_NET_WM_NAME");
  if (info.name.empty()) info.name = x_.text(window, "WM_NAME");
  std::tie(info.instance, info.className) = splitClass(x_.text(window, "WM_CLASS"));
  const auto types = atomNames(window, "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_");
  if (!types.empty()) info.type = types.front();
  info.states = atomNames(window, "_NET_WM_STATE", "_NET_WM_STATE_");
  info.area = {origin->dst_x, origin->dst_y, geometry->width, geometry->height};
  info.viewable = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
  const std::vector<std::uint32_t> clients = x_.numbers(x_.root(), "_NET_CLIENT_LIST");
  info.managed = std::find(clients.begin(), clients.end(), window) != clients.end();
  return info;
}

std::vector<std::string> WindowList::atomNames(xcb_window_t window, std::string_view property,
                                               std::string_view prefix) const {
  std::vector<std::string> names;
  for (const xcb_atom_t atom : x_.numbers(window, property)) {
    std::string name = x_.atomName(atom);
    if (name.starts_with(prefix)) name.erase(0, prefix.size());
    names.push_back(std::move(name));
  }
  return names;
}

xcb_window_t WindowList::active() const {
  return x_.number(x_.root(), "_NET_ACTIVE_WINDOW").value_or(XCB_NONE);
}

std::vector<xcb_window_t> WindowList::stacking() const {
  return x_.numbers(x_.root(), "_NET_CLIENT_LIST_STACKING");
}

void WindowList::activate(xcb_window_t window) const {
  x_.askWindowManager(window, "_NET_ACTIVE_WINDOW", {kFromPager, XCB_CURRENT_TIME, 0});
}

void WindowList::close(xcb_window_t window) const {
  x_.askWindowManager(window, "_NET_CLOSE_WINDOW", {XCB_CURRENT_TIME, kFromPager});
}

}  // namespace harness
