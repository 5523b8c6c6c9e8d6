#include "desktop/linux/xserver/WindowStack.h"

#include <algorithm>
#include <array>

namespace linux_desktop {
namespace {

/// Window managers put an icon window into one frame or two.
constexpr int kLevelsBelowTop = 2;

struct Candidate {
  xcb_window_t window;
  std::size_t level;
};

bool isOurs(const XServer& server, xcb_window_t window) {
  const xcb_setup_t* setup = xcb_get_setup(server.get());
  return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

/// Null for a window that is gone or not on the screen.
std::vector<XReply<xcb_get_window_attributes_reply_t>> shownAmong(
    XServer& server, const std::vector<xcb_window_t>& windows) {
  const auto ask = [&](xcb_window_t window) {
    return xcb_get_window_attributes(server.get(), window);
  };
  auto results = answersTo(server.get(), windows, ask, xcb_get_window_attributes_reply);
  for (auto& reply : results) {
    const bool shown = reply && reply->map_state == XCB_MAP_STATE_VIEWABLE &&
                       reply->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
    if (!shown) reply.reset();
  }
  return results;
}

/// None for a window that is gone or lies deeper than window managers put one.
xcb_window_t topLevelOf(XServer& server, xcb_window_t window) {
  for (int level = 0; level <= kLevelsBelowTop; ++level) {
    const xcb_window_t parent = server.parentOf(window);
    if (parent == server.root()) return window;
    window = parent;
  }
  return XCB_NONE;
}

std::vector<WindowStack::TopLevel> topLevelsOf(XServer& server) {
  const std::vector<xcb_window_t> windows = server.childrenOf(std::array{server.root()}).front();
  const auto ask = [&](xcb_window_t window) { return xcb_get_geometry(server.get(), window); };
  const auto places = answersTo(server.get(), windows, ask, xcb_get_geometry_reply);
  const auto shown = shownAmong(server, windows);
  std::vector<WindowStack::TopLevel> topLevels;
  for (std::size_t i = 0; i < windows.size(); ++i) {
    const auto& place = places[i];
    if (!place || !shown[i]) continue;
    const int borders = 2 * place->border_width;
    topLevels.push_back({windows[i],
                         QRect(place->x, place->y, place->width + borders, place->height + borders),
                         shown[i]->override_redirect != 0});
  }
  return topLevels;
}

std::vector<xcb_window_t> windowsOf(const std::vector<Candidate>& candidates) {
  std::vector<xcb_window_t> windows(candidates.size());
  std::ranges::transform(candidates, windows.begin(), &Candidate::window);
  return windows;
}

/// Moves those of the type DESKTOP from `candidates` to `found`, and drops what has another type:
/// that is a client, and holds no others.
void takeDesktopWindows(XServer& server, std::vector<Candidate>& candidates,
                        std::vector<Candidate>& found) {
  const auto types = server.numbersOf(windowsOf(candidates), "_NET_WM_WINDOW_TYPE");
  const xcb_atom_t desktop = server.atom("_NET_WM_WINDOW_TYPE_DESKTOP");
  std::vector<Candidate> untyped;
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    if (types[i].empty()) untyped.push_back(candidates[i]);
    if (std::ranges::count(types[i], desktop) > 0) found.push_back(candidates[i]);
  }
  candidates = std::move(untyped);
}

/// The windows of type DESKTOP that the window manager lists, wherever in a frame they are. Frames
/// hold a dozen windows each, which makes looking through them dear.
std::vector<Candidate> listedDesktopWindows(XServer& server, const std::vector<xcb_window_t>& list,
                                            const std::vector<WindowStack::TopLevel>& topLevels) {
  const auto types = server.numbersOf(list, "_NET_WM_WINDOW_TYPE");
  const xcb_atom_t desktop = server.atom("_NET_WM_WINDOW_TYPE_DESKTOP");
  std::vector<Candidate> found;
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (std::ranges::count(types[i], desktop) == 0) continue;
    const auto level =
        std::ranges::find(topLevels, topLevelOf(server, list[i]), &WindowStack::TopLevel::window);
    if (level == topLevels.end()) continue;
    found.push_back({list[i], static_cast<std::size_t>(level - topLevels.begin())});
  }
  return found;
}

std::vector<Candidate> below(XServer& server, const std::vector<Candidate>& parents) {
  const auto children = server.childrenOf(windowsOf(parents));
  std::vector<Candidate> result;
  for (std::size_t i = 0; i < parents.size(); ++i) {
    for (const xcb_window_t child : children[i]) result.push_back({child, parents[i].level});
  }
  return result;
}

std::vector<WindowStack::DesktopWindow> shownDesktopWindows(XServer& server,
                                                            const std::vector<Candidate>& found) {
  const std::vector<xcb_window_t> windows = windowsOf(found);
  const auto shown = shownAmong(server, windows);
  std::vector<WindowStack::DesktopWindow> result;
  for (std::size_t i = 0; i < found.size(); ++i) {
    const auto area = shown[i] ? server.geometry(windows[i]) : std::nullopt;
    if (area) result.push_back({windows[i], *area, found[i].level, isOurs(server, windows[i])});
  }
  std::ranges::stable_sort(result, {}, &WindowStack::DesktopWindow::level);
  return result;
}

}  // namespace

WindowStack WindowStack::read(XServer& server) {
  WindowStack stack;
  stack.topLevels = topLevelsOf(server);
  std::vector<Candidate> candidates;
  for (std::size_t i = 0; i < stack.topLevels.size(); ++i) {
    candidates.push_back({stack.topLevels[i].window, i});
  }
  std::vector<Candidate> found;
  takeDesktopWindows(server, candidates, found);
  const std::vector<xcb_window_t> list = server.numbers(server.root(), "_NET_CLIENT_LIST");
  for (const Candidate& listed : listedDesktopWindows(server, list, stack.topLevels)) {
    if (std::ranges::count(found, listed.window, &Candidate::window) == 0) found.push_back(listed);
  }
  for (int level = 0; list.empty() && level < kLevelsBelowTop; ++level) {
    candidates = below(server, candidates);
    takeDesktopWindows(server, candidates, found);
  }
  stack.desktopWindows = shownDesktopWindows(server, found);
  return stack;
}

bool WindowStack::DesktopWindow::covers(const QRect& monitor) const {
  const QRect shared = area & monitor;
  return 2 * shared.width() > monitor.width() && 2 * shared.height() > monitor.height();
}

const WindowStack::DesktopWindow* WindowStack::iconsOn(const QRect& area) const {
  const DesktopWindow* topmost = nullptr;
  for (const DesktopWindow& window : desktopWindows) {
    if (!window.ours && window.area.intersects(area)) topmost = &window;
  }
  return topmost;
}

const WindowStack::DesktopWindow* WindowStack::desktopOn(const QRect& monitor) const {
  const DesktopWindow* topmost = nullptr;
  for (const DesktopWindow& window : desktopWindows) {
    if (!window.ours && window.covers(monitor)) topmost = &window;
  }
  return topmost;
}

}  // namespace linux_desktop
