#include "desktop/linux/tray/DockWindows.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <span>
#include <string_view>

#include "desktop/linux/x11/XReply.h"

namespace linux_desktop {
namespace {

enum Atom : std::size_t { ClientList, WindowType, TypeDock, Pid, AtomCount };

constexpr std::array<std::string_view, AtomCount> kAtomNames = {
    "_NET_CLIENT_LIST", "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DOCK", "_NET_WM_PID"};

using Atoms = std::array<xcb_atom_t, AtomCount>;

Atoms internAtoms(xcb_connection_t* x) {
  std::array<xcb_intern_atom_cookie_t, AtomCount> asked{};
  for (std::size_t i = 0; i < AtomCount; ++i)
    asked[i] = xcb_intern_atom(x, 0, static_cast<std::uint16_t>(kAtomNames[i].size()),
                               kAtomNames[i].data());
  Atoms atoms{};
  for (std::size_t i = 0; i < AtomCount; ++i) {
    const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(x, asked[i], nullptr));
    if (reply) atoms[i] = reply->atom;
  }
  return atoms;
}

xcb_get_property_cookie_t ask(xcb_connection_t* x, xcb_window_t window, xcb_atom_t property) {
  constexpr std::uint32_t kMaxItems = 4096;
  return xcb_get_property(x, 0, window, property, XCB_ATOM_ANY, 0, kMaxItems);
}

std::vector<std::uint32_t> answer(xcb_connection_t* x, xcb_get_property_cookie_t asked) {
  const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x, asked, nullptr));
  if (!reply || reply->format != 32) return {};
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {first, first + reply->value_len};
}

/// Qt keeps the origin of each screen and divides lengths by the screen's scale.
QRect inQtCoordinates(const QRect& native) {
  for (const QScreen* screen : QGuiApplication::screens()) {
    const double scale = screen->devicePixelRatio();
    const QPoint origin = screen->geometry().topLeft();
    const QRect whole(origin, screen->geometry().size() * scale);
    if (!whole.contains(native.center())) continue;
    return {origin + (native.topLeft() - origin) / scale, native.size() / scale};
  }
  return native;
}

struct Question {
  xcb_window_t window;
  xcb_get_property_cookie_t type;
  xcb_get_property_cookie_t pid;
  xcb_get_geometry_cookie_t size;
  xcb_translate_coordinates_cookie_t place;
};

/// A window as it stands, of `type` or of any.
std::optional<DockWindow> answer(xcb_connection_t* x, const Question& asked,
                                 std::optional<xcb_atom_t> type) {
  const auto types = answer(x, asked.type);
  const auto pid = answer(x, asked.pid);
  const XReply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(x, asked.size, nullptr));
  const XReply<xcb_translate_coordinates_reply_t> place(
      xcb_translate_coordinates_reply(x, asked.place, nullptr));
  if (type && std::ranges::find(types, *type) == types.end()) return std::nullopt;
  if (!size || !place) return std::nullopt;
  const QRect native(place->dst_x, place->dst_y, size->width, size->height);
  return DockWindow{asked.window, inQtCoordinates(native), pid.empty() ? 0 : pid.front()};
}

std::vector<DockWindow> look(xcb_connection_t* x, xcb_window_t root,
                             std::span<const xcb_window_t> windows, const Atoms& atoms,
                             std::optional<xcb_atom_t> type) {
  std::vector<Question> questions;
  for (const xcb_window_t window : windows)
    questions.push_back({window, ask(x, window, atoms[WindowType]), ask(x, window, atoms[Pid]),
                         xcb_get_geometry(x, window),
                         xcb_translate_coordinates(x, window, root, 0, 0)});
  std::vector<DockWindow> found;
  for (const Question& question : questions)
    if (const auto window = answer(x, question, type)) found.push_back(*window);
  return found;
}

std::vector<std::uint32_t> childrenOf(xcb_connection_t* x, xcb_window_t window) {
  const XReply<xcb_query_tree_reply_t> tree(
      xcb_query_tree_reply(x, xcb_query_tree(x, window), nullptr));
  if (!tree) return {};
  const std::span children(xcb_query_tree_children(tree.get()), tree->children_len);
  return {children.begin(), children.end()};
}

xcb_connection_t* connectionOfQt() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 == nullptr ? nullptr : x11->connection();
}

xcb_window_t rootOf(xcb_connection_t* x) {
  return xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
}

const Atoms& atomsOf(xcb_connection_t* x) {
  static const Atoms atoms = internAtoms(x);
  return atoms;
}

}  // namespace

std::vector<DockWindow> dockWindows() {
  xcb_connection_t* x = connectionOfQt();
  if (x == nullptr) return {};
  const xcb_window_t root = rootOf(x);
  const Atoms& atoms = atomsOf(x);
  std::vector<std::uint32_t> windows = answer(x, ask(x, root, atoms[ClientList]));
  // Without a window manager nobody keeps the list, and panels are the root's children.
  if (windows.empty()) windows = childrenOf(x, root);
  return look(x, root, windows, atoms, atoms[TypeDock]);
}

std::optional<QRect> partDrawnBy(std::uint32_t pid, const DockWindow& dock) {
  constexpr int kDepth = 4;
  xcb_connection_t* x = connectionOfQt();
  if (x == nullptr) return std::nullopt;
  std::vector<std::uint32_t> level{dock.id};
  for (int depth = 0; depth < kDepth && !level.empty(); ++depth) {
    std::vector<std::uint32_t> next;
    for (const xcb_window_t window : level)
      std::ranges::copy(childrenOf(x, window), std::back_inserter(next));
    for (const DockWindow& part : look(x, rootOf(x), next, atomsOf(x), std::nullopt))
      if (part.pid == pid) return part.geometry;
    level = std::move(next);
  }
  return std::nullopt;
}

}  // namespace linux_desktop
