#include "desktop/linux/x11/HideAndShow.h"

#include <algorithm>
#include <iterator>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

/// The place above `sibling`; the bottom for none.
WindowOrder::const_iterator above(const WindowOrder& order, xcb_window_t sibling) {
  return sibling == XCB_NONE ? order.begin() : std::next(std::ranges::find(order, sibling));
}

}  // namespace

WindowOrder orderPutBack(const WindowOrder& current, const WindowSet& moved,
                         const WindowOrder& remembered) {
  const WindowSet known(remembered.begin(), remembered.end());
  const WindowSet present(current.begin(), current.end());
  WindowOrder order;
  std::ranges::copy_if(current, std::back_inserter(order), [&](xcb_window_t window) {
    return !moved.contains(window) || !known.contains(window);
  });
  xcb_window_t sibling = XCB_NONE;
  for (const xcb_window_t window : remembered) {
    if (!present.contains(window)) continue;
    if (moved.contains(window)) order.insert(above(order, sibling), window);
    sibling = window;
  }
  return order;
}

namespace {

/// A window manager under load takes its time, and nobody waits for this.
constexpr std::chrono::milliseconds kPatience{500};
/// With a hundred windows to paint, mutter 48 took more than that.
constexpr std::chrono::milliseconds kPatienceWithThePainting{3'000};

}  // namespace

HideOperation::HideOperation(HiddenStateWait& wait, Plan plan, std::function<void()> done)
    : HiddenOperation(wait, std::move(done)), plan_(std::move(plan)) {
  clients_.remember(plan_.order, plan_.active);
  for (const xcb_window_t window : plan_.windows) clients_.mark(window, kHidden);
  for (const xcb_window_t window : plan_.followers) clients_.mark(window, kHidden);
  hide(plan_.windows, [this](const std::vector<xcb_window_t>& left) {
    if (!left.empty()) qCDebug(lcX11) << left.size() << "windows do not hide";
    hideFollowersLeft();
  });
}

void HideOperation::hide(const std::vector<xcb_window_t>& windows, HiddenStateWait::Done then) {
  wait_.start(
      {windows, true, plan_.minimisesLater ? kPatienceWithThePainting : kPatience, plan_.manager},
      [this](xcb_window_t window) { clients_.minimise(window); }, std::move(then));
}

void HideOperation::hideFollowersLeft() {
  std::vector<xcb_window_t> left;
  if (!plan_.followers.empty() && !wait_.managerIsGone()) {
    const auto minimised = clients_.minimisedOf(plan_.followers);
    for (const xcb_window_t window : plan_.followers) {
      if (!minimised.contains(window)) left.push_back(window);
    }
  }
  if (left.empty()) {
    done_();
    return;
  }
  hide(left, [this](const std::vector<xcb_window_t>&) { done_(); });
}

namespace {

/// How long a window manager may do nothing about a request before the next way is tried.
constexpr std::chrono::milliseconds kUsualPatience{150};
/// Where no gentler way is left, it only keeps a window manager under load from being hurried.
constexpr std::chrono::milliseconds kLongPatience{700};

}  // namespace

ShowOperation::ShowOperation(HiddenStateWait& wait, std::vector<xcb_window_t> windows,
                             ClientList before, std::function<void()> done)
    : HiddenOperation(wait, std::move(done)),
      windows_(std::move(windows)),
      before_(std::move(before)) {
  ask(before_.habits.firstWay, windows_);
}

void ShowOperation::ask(ShowWay way, std::vector<xcb_window_t> windows) {
  const auto patience = way == ShowWay::RemoveState ? kUsualPatience : kLongPatience;
  wait_.start(
      {std::move(windows), false, patience, before_.manager},
      [this, way](xcb_window_t window) { askFor(way, window); },
      [this, way](std::vector<xcb_window_t> left) { asked(way, std::move(left)); });
}

void ShowOperation::askFor(ShowWay way, xcb_window_t window) {
  switch (way) {
    case ShowWay::RemoveState:
      clients_.restore(window);
      break;
    case ShowWay::Map:
      xcb_map_window(clients_.server().get(), window);
      break;
    case ShowWay::Activate: {
      // Activating goes to the workspace of the window, so the window comes to this one first.
      const ClientWindow* before = before_.find(window);
      const bool elsewhere = before != nullptr && !before_.isHere(*before);
      if (elsewhere) clients_.moveToDesktop(window, before_.currentDesktop);
      clients_.activate(window, XCB_CURRENT_TIME);
      if (elsewhere) clients_.moveToDesktop(window, *before->desktop);
      break;
    }
  }
}

void ShowOperation::asked(ShowWay way, std::vector<xcb_window_t> left) {
  if (!left.empty()) qCDebug(lcX11) << left.size() << "windows do not come back so";
  if (wait_.managerIsGone()) {
    done_();
  } else if (left.empty() || way == ShowWay::Activate) {
    putBack();
  } else {
    ask(way == ShowWay::RemoveState ? ShowWay::Map : ShowWay::Activate, std::move(left));
  }
}

void ShowOperation::putBack() {
  ClientList now = before_;
  if (!clients_.refresh(now)) now = clients_.read();
  if (now.manager.window == XCB_NONE) {
    done_();
    return;
  }
  WindowSet shown(windows_.begin(), windows_.end());
  for (const ClientWindow& window : now.windows) {
    if (window.minimised) shown.erase(window.id);
  }
  putBackDesktops(now);
  const xcb_window_t active = toActivate(now, shown);
  if (active != XCB_NONE) activate(active);
  putBackOrder(now, shown, active);
  clearMarks(shown);
  xcb_flush(clients_.server().get());
  done_();
}

xcb_window_t ShowOperation::toActivate(const ClientList& now, const WindowSet& shown) const {
  const xcb_window_t kept = before_.active == now.active ? xcb_window_t{XCB_NONE} : before_.active;
  const ClientWindow* active = before_.workWindow(before_.active);
  if (active != nullptr && !active->minimised) return kept;
  // Window managers give it to what comes back, and only the user to another one.
  if (before_.workWindow(now.active) != nullptr && !shown.contains(now.active)) return XCB_NONE;
  const ClientWindow* last = before_.workWindow(before_.rememberedActive);
  const bool canBeActive =
      last != nullptr && before_.isHere(*last) && (!last->minimised || shown.contains(last->id));
  return canBeActive ? last->id : kept;
}

void ShowOperation::activate(xcb_window_t window) {
  const xcb_timestamp_t time = clients_.server().time();
  if (!before_.canRestack && !before_.habits.activates) {
    // Activating raises it, which nobody could undo. To Xfwm4, besides, one that was the last to be
    // minimised has never ceased to be the active one.
    xcb_set_input_focus(clients_.server().get(), XCB_INPUT_FOCUS_POINTER_ROOT, window, time);
    return;
  }
  clients_.activate(window, time);
}

void ShowOperation::putBackDesktops(const ClientList& now) {
  for (const xcb_window_t id : windows_) {
    const ClientWindow* before = before_.find(id);
    const ClientWindow* after = now.find(id);
    if (before == nullptr || after == nullptr || !before->isOnOneDesktop()) continue;
    if (after->desktop && after->desktop != before->desktop) {
      clients_.moveToDesktop(id, *before->desktop);
    }
  }
}

void ShowOperation::putBackOrder(const ClientList& now, const WindowSet& shown,
                                 xcb_window_t raised) {
  if (!before_.canRestack) return;
  // What is off the screen is nothing to be above of; nor is a desktop, which stands in a layer of
  // its own: IceWM passes over such a wish, and KWin takes it for one for the very top.
  WindowOrder current = now.stacking;
  std::erase_if(current, [&](xcb_window_t id) {
    const ClientWindow* window = now.find(id);
    return window != nullptr && (window->minimised || window->kind == ClientKind::Furniture);
  });
  const WindowOrder order = orderPutBack(current, shown, before_.knownOrder());
  if (std::erase(current, raised) != 0) current.push_back(raised);
  // Each, wherever it seems to be: IceWM is late to tell what is where, and Openbox puts one to the
  // very top when the one under it is on another workspace.
  xcb_window_t sibling = XCB_NONE;
  for (const xcb_window_t window : order) {
    const bool standsThere = !current.empty() && current.front() == window;
    if (!standsThere || !before_.habits.movesWhatStandsRight) clients_.restack(window, sibling);
    std::erase(current, window);
    sibling = window;
  }
}

void ShowOperation::clearMarks(const WindowSet& shown) {
  bool someStayHidden = false;
  for (const ClientWindow& window : before_.windows) {
    const bool staysHidden = window.isHidden() && !shown.contains(window.id);
    if (window.mark && !staysHidden) clients_.mark(window.id, std::nullopt);
    someStayHidden = someStayHidden || staysHidden;
  }
  if (!someStayHidden) clients_.remember({}, XCB_NONE);
}

}  // namespace linux_desktop
