#include "desktop/linux/x11/XPanels.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <array>
#include <iterator>
#include <string>

namespace linux_desktop {
namespace {

/// EWMH 1.5, _NET_WM_STRUT_PARTIAL: the four widths, then where along its edge each begins and
/// ends.
enum Strut { Left, Right, Top, Bottom, Widths };
constexpr std::size_t kPartialItems = 12;

/// The strip that a strut speaks of, on a root window of size `root`.
QRect stripOf(std::vector<std::uint32_t> strut, QSize root) {
  if (strut.size() < Widths) return {};
  if (strut.size() < kPartialItems) {
    const auto w = static_cast<std::uint32_t>(root.width());
    const auto h = static_cast<std::uint32_t>(root.height());
    strut.resize(Widths);
    strut.insert(strut.end(), {0, h - 1, 0, h - 1, 0, w - 1, 0, w - 1});
  }
  const auto at = [&strut](std::size_t index) { return static_cast<int>(strut[index]); };
  for (const std::size_t side : {Left, Right, Top, Bottom}) {
    if (at(side) == 0) continue;
    const int begin = at(Widths + 2 * side);
    const int length = at(Widths + 2 * side + 1) - begin + 1;
    const std::array<QRect, Widths> strips{
        QRect(0, begin, at(side), length), QRect(root.width() - at(side), begin, at(side), length),
        QRect(begin, 0, length, at(side)),
        QRect(begin, root.height() - at(side), length, at(side))};
    return strips[side];
  }
  return {};
}

/// What is at most so many levels under a window, the upper ones first.
std::vector<xcb_window_t> windowsBelow(xcb_window_t window, int levels, XServer& server) {
  std::vector<xcb_window_t> all;
  std::vector<xcb_window_t> level{window};
  for (; levels > 0 && !level.empty(); --levels) {
    std::vector<xcb_window_t> next;
    for (const auto& children : server.childrenOf(level))
      next.insert(next.end(), children.begin(), children.end());
    all.insert(all.end(), next.begin(), next.end());
    level = std::move(next);
  }
  return all;
}

bool isOnScreen(xcb_window_t window, XServer& server) {
  const XReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
      server.get(), xcb_get_window_attributes(server.get(), window), nullptr));
  return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

std::vector<XPanel> panelsAmong(const std::vector<xcb_window_t>& windows, const QSize& root,
                                XServer& server) {
  const auto types = server.numbersOf(windows, "_NET_WM_WINDOW_TYPE");
  const auto partial = server.numbersOf(windows, "_NET_WM_STRUT_PARTIAL");
  const auto whole = server.numbersOf(windows, "_NET_WM_STRUT");
  const auto pids = server.numbersOf(windows, "_NET_WM_PID");
  const xcb_atom_t dock = server.atom("_NET_WM_WINDOW_TYPE_DOCK");
  std::vector<XPanel> panels;
  for (std::size_t i = 0; i < windows.size(); ++i) {
    const QRect strip = stripOf(partial[i].empty() ? whole[i] : partial[i], root);
    if (strip.isEmpty() && std::ranges::find(types[i], dock) == types[i].end()) continue;
    const auto geometry = server.geometry(windows[i]);
    if (geometry && isOnScreen(windows[i], server))
      panels.push_back({windows[i], *geometry, strip, pids[i].empty() ? 0 : pids[i][0]});
  }
  return panels;
}

std::vector<QRect> rectanglesIn(const std::vector<std::uint32_t>& numbers) {
  constexpr std::size_t kItems = 4;
  std::vector<QRect> rectangles;
  for (std::size_t i = 0; i + kItems <= numbers.size(); i += kItems) {
    const auto at = [&](std::size_t item) { return static_cast<int>(numbers[i + item]); };
    rectangles.emplace_back(at(0), at(1), at(2), at(3));
  }
  return rectangles;
}

/// What is left for windows: on each monitor where the window manager tells that, else of all.
std::vector<QRect> workAreas(XServer& server) {
  const std::size_t desktop = server.number(server.root(), "_NET_CURRENT_DESKTOP").value_or(0);
  // Mutter's and Muffin's, for GTK.
  const std::string ofMonitors = "_GTK_WORKAREAS_D" + std::to_string(desktop);
  auto areas = rectanglesIn(server.numbers(server.root(), ofMonitors));
  if (!areas.empty()) return areas;
  areas = rectanglesIn(server.numbers(server.root(), "_NET_WORKAREA"));
  return desktop < areas.size() ? std::vector{areas[desktop]} : std::vector<QRect>{};
}

/// What lies between the edges of `monitor` and `area`, from edge to edge.
std::vector<QRect> stripsAround(const QRect& area, const QRect& monitor) {
  std::vector<QRect> strips{monitor, monitor, monitor, monitor};
  strips[0].setBottom(area.top() - 1);
  strips[1].setTop(area.bottom() + 1);
  strips[2].setRight(area.left() - 1);
  strips[3].setLeft(area.right() + 1);
  std::erase_if(strips, &QRect::isEmpty);
  return strips;
}

/// `strip` along the whole side of the root window: a panel makes the work area of all monitors
/// smaller.
QRect alongRoot(QRect strip, const QRect& root) {
  if (strip.width() > strip.height()) {
    strip.setLeft(root.left());
    strip.setRight(root.right());
  } else {
    strip.setTop(root.top());
    strip.setBottom(root.bottom());
  }
  return strip;
}

/// The strips that are kept free at the edges of monitors and that no window in `panels` explains.
std::vector<QRect> stripsWithoutWindow(const std::vector<XPanel>& panels, const QRect& root,
                                       XServer& server) {
  std::vector<QRect> strips;
  const std::vector<QRect> areas = workAreas(server);
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect monitor = pixelsOf(*screen);
    const auto area =
        std::ranges::find_if(areas, [&](const QRect& each) { return each.intersects(monitor); });
    if (area == areas.end()) continue;
    std::ranges::copy(stripsAround(*area & monitor, monitor), std::back_inserter(strips));
  }
  std::erase_if(strips, [&](const QRect& strip) {
    const QRect side = alongRoot(strip, root);
    return std::ranges::any_of(panels, [&](const XPanel& panel) {
      return side.intersects(panel.geometry) || side.intersects(panel.reserved);
    });
  });
  return strips;
}

}  // namespace

std::vector<XPanel> panelsOn(XServer& server) {
  const auto root = server.geometry(server.root());
  if (!root) return {};
  const auto managed = server.numbers(server.root(), "_NET_CLIENT_LIST");
  std::vector<XPanel> panels = panelsAmong(managed, root->size(), server);
  // i3 and IceWM do not list their own bars, and without a window manager nobody keeps the list.
  if (panels.empty()) {
    constexpr int kLevels = 3;  // IceWM has its bar in two frames
    panels = panelsAmong(windowsBelow(server.root(), kLevels, server), root->size(), server);
  }
  for (const QRect& strip : stripsWithoutWindow(panels, *root, server))
    panels.push_back({XCB_NONE, strip, strip});
  return panels;
}

std::optional<QRect> partDrawnBy(std::uint32_t pid, const XPanel& panel, XServer& server) {
  constexpr int kLevels = 4;
  const std::vector<xcb_window_t> windows = windowsBelow(panel.window, kLevels, server);
  const auto pids = server.numbersOf(windows, "_NET_WM_PID");
  for (std::size_t i = 0; i < windows.size(); ++i) {
    if (!pids[i].empty() && pids[i][0] == pid) return server.geometry(windows[i]);
  }
  return std::nullopt;
}

}  // namespace linux_desktop
