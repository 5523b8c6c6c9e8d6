#include "desktop/linux/x11/ShowOperation.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "desktop/linux/xserver/XLog.h"

namespace linux_desktop {
namespace {

/// How long a window manager may do nothing about a request before the next way is tried.
constexpr std::chrono::milliseconds kUsualPatience{150};
/// Where no gentler way is left, it only keeps a window manager under load from being hurried.
constexpr std::chrono::milliseconds kLongPatience{700};

}  // namespace

ShowOperation::Way ShowOperation::firstWay() const {
  struct Row {
    std::string_view name;
    Way way;
  };
  // These do not heed the ways before; asking would only cost the wait for it. Marco calls itself
  // "Metacity (Marco)", Muffin "Mutter (Muffin)".
  constexpr std::array kRows{Row{"KWin", Way::Map}, Row{"Marco", Way::Map},
                             Row{"Muffin", Way::Activate}};
  const auto* row = std::ranges::find_if(kRows, [this](const Row& known) {
    return plan_.before.windowManager.find(known.name) != std::string::npos;
  });
  return row == kRows.end() ? Way::RemoveState : row->way;
}

ShowOperation::ShowOperation(XEvents& events, ClientWindows& clients, Plan plan,
                             std::function<void()> done)
    : clients_(clients),
      requests_(clients),
      wait_(events, clients),
      plan_(std::move(plan)),
      done_(std::move(done)) {
  for (const ClientWindow& window : plan_.before.windows) {
    if (window.desktop) desktops_.emplace(window.id, *window.desktop);
  }
  ask(firstWay(), plan_.windows);
}

void ShowOperation::ask(Way way, std::vector<xcb_window_t> windows) {
  const auto patience = way == Way::RemoveState ? kUsualPatience : kLongPatience;
  wait_.start(
      {std::move(windows), false, patience, plan_.before.manager},
      [this, way](xcb_window_t window) { askFor(way, window); },
      [this, way](std::vector<xcb_window_t> left) { asked(way, std::move(left)); });
}

void ShowOperation::askFor(Way way, xcb_window_t window) {
  switch (way) {
    case Way::RemoveState:
      requests_.restore(window);
      break;
    case Way::Map:
      requests_.map(window);
      break;
    case Way::Activate: {
      // Activating goes to the workspace of the window, so the window comes to this one first.
      const auto desktop = desktops_.find(window);
      const bool elsewhere =
          desktop != desktops_.end() && desktop->second != plan_.before.currentDesktop;
      if (elsewhere) requests_.moveToDesktop(window, plan_.before.currentDesktop);
      requests_.activate(window, XCB_CURRENT_TIME);
      if (elsewhere) requests_.moveToDesktop(window, desktop->second);
      break;
    }
  }
}

void ShowOperation::asked(Way way, std::vector<xcb_window_t> left) {
  if (wait_.managerIsGone()) {
    done_();
  } else if (left.empty()) {
    putBack();
  } else if (way == Way::RemoveState) {
    ask(Way::Map, std::move(left));
  } else if (way == Way::Map) {
    ask(Way::Activate, std::move(left));
  } else {
    qCDebug(lcX11) << left.size() << "windows do not come back";
    putBack();
  }
}

void ShowOperation::putBack() {
  const ClientWindows::Places now = clients_.placesOf(plan_.windows);
  WindowSet shown(plan_.windows.begin(), plan_.windows.end());
  std::erase_if(shown, [&](xcb_window_t window) { return now.minimised.contains(window); });
  putBackDesktops(now);
  putBackOrder(now, shown);
  const xcb_window_t active = plan_.before.active;
  if (active != XCB_NONE && active != now.active) {
    requests_.activate(active, clients_.server().time());
  }
  clearMarks(shown);
  requests_.send();
  done_();
}

void ShowOperation::putBackDesktops(const ClientWindows::Places& now) {
  for (const xcb_window_t window : plan_.windows) {
    const auto before = desktops_.find(window);
    const auto after = now.desktops.find(window);
    if (before == desktops_.end() || after == now.desktops.end()) continue;
    if (before->second != after->second) requests_.moveToDesktop(window, before->second);
  }
}

void ShowOperation::putBackOrder(const ClientWindows::Places& now, const WindowSet& shown) {
  if (!plan_.before.canRestack) return;
  // What is off the screen is nothing to be above of.
  WindowOrder current = now.stacking;
  WindowSet off = now.minimised;
  for (const ClientWindow& window : plan_.before.windows) {
    if (window.minimised && !shown.contains(window.id)) off.insert(window.id);
  }
  std::erase_if(current, [&](xcb_window_t window) { return off.contains(window); });
  const WindowOrder known = plan_.before.knownOrder();
  const WindowOrder wanted = orderPutBack(current, shown, known);
  const std::vector<Restacking> moves = restackings(current, shown, wanted);
  for (const Restacking& move : moves) requests_.restack(move.window, move.sibling);
  if (moves.empty()) return;
  // To KWin, "above that one" is the very top where that one is no ordinary window.
  const auto last = std::ranges::find_if(
      wanted.rbegin(), wanted.rend(), [&](xcb_window_t window) { return shown.contains(window); });
  for (auto newer = last.base(); newer != wanted.end(); ++newer) {
    if (std::ranges::find(known, *newer) == known.end()) requests_.raise(*newer);
  }
}

void ShowOperation::clearMarks(const WindowSet& shown) {
  bool someStayHidden = false;
  for (const ClientWindow& window : plan_.before.windows) {
    const bool staysHidden = window.isHidden() && !shown.contains(window.id);
    if (window.mark && !staysHidden) requests_.unmark(window.id);
    someStayHidden = someStayHidden || staysHidden;
  }
  if (!someStayHidden) requests_.rememberOrder({});
}

}  // namespace linux_desktop
