#include "desktop/linux/x11/ShowOperation.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "desktop/linux/log/Log.h"

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
  if (const xcb_window_t window = toActivate(now, shown); window != XCB_NONE) {
    activate(window);
  }
  putBackOrder(now, shown);
  clearMarks(shown);
  requests_.send();
  done_();
}

xcb_window_t ShowOperation::toActivate(const ClientWindows::Places& now,
                                       const WindowSet& shown) const {
  const ClientList& before = plan_.before;
  const xcb_window_t kept = before.active == now.active ? xcb_window_t{XCB_NONE} : before.active;
  const ClientWindow* active = before.workWindow(before.active);
  if (active != nullptr && !active->minimised) return kept;
  // Window managers give it to what comes back, and only the user to another one.
  if (before.workWindow(now.active) != nullptr && !shown.contains(now.active)) return XCB_NONE;
  const ClientWindow* last = before.workWindow(before.rememberedActive);
  const bool canBeActive =
      last != nullptr && before.isHere(*last) && (!last->minimised || shown.contains(last->id));
  return canBeActive ? last->id : kept;
}

void ShowOperation::activate(xcb_window_t window) {
  const xcb_timestamp_t time = clients_.server().time();
  if (!plan_.before.canRestack) {
    // Activating raises it, which nobody could undo. To Xfwm4, besides, one that was the last to be
    // minimised has never ceased to be the active one.
    requests_.focus(window, time);
    return;
  }
  requests_.activate(window, time);
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
  // What is off the screen is nothing to be above of; nor is a desktop, which stands in a layer of
  // its own: IceWM passes over such a wish, and KWin takes it for one for the very top.
  WindowOrder current = now.stacking;
  WindowSet apart = now.minimised;
  for (const ClientWindow& window : plan_.before.windows) {
    const bool isAway = window.minimised && !shown.contains(window.id);
    if (isAway || window.kind == ClientKind::Furniture) apart.insert(window.id);
  }
  std::erase_if(current, [&](xcb_window_t window) { return apart.contains(window); });
  // Each, wherever it seems to be: IceWM is late to tell what is where, and Openbox puts one to the
  // very top when the one under it is on another workspace.
  xcb_window_t sibling = XCB_NONE;
  for (const xcb_window_t window : orderPutBack(current, shown, plan_.before.knownOrder())) {
    requests_.restack(window, sibling);
    sibling = window;
  }
}

void ShowOperation::clearMarks(const WindowSet& shown) {
  bool someStayHidden = false;
  for (const ClientWindow& window : plan_.before.windows) {
    const bool staysHidden = window.isHidden() && !shown.contains(window.id);
    if (window.mark && !staysHidden) requests_.unmark(window.id);
    someStayHidden = someStayHidden || staysHidden;
  }
  if (!someStayHidden) requests_.remember({}, XCB_NONE);
}

}  // namespace linux_desktop
