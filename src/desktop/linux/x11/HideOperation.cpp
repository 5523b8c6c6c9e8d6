#include "desktop/linux/x11/HideOperation.h"

#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

/// A window manager under load takes its time, and nobody waits for this.
constexpr std::chrono::milliseconds kPatience{500};

}  // namespace

HideOperation::HideOperation(XEvents& events, ClientWindows& clients, Plan plan,
                             std::function<void()> done)
    : clients_(clients),
      requests_(clients),
      wait_(events, clients),
      plan_(std::move(plan)),
      done_(std::move(done)) {
  requests_.remember(plan_.order, plan_.active);
  for (const xcb_window_t window : plan_.windows) requests_.mark(window, HiddenMark::Hidden);
  for (const xcb_window_t window : plan_.followers) requests_.mark(window, HiddenMark::Hidden);
  hide(plan_.windows, [this](const std::vector<xcb_window_t>& left) {
    if (!left.empty()) qCDebug(lcX11) << left.size() << "windows do not hide";
    hideFollowersLeft();
  });
}

void HideOperation::hide(const std::vector<xcb_window_t>& windows, HiddenStateWait::Done then) {
  wait_.start(
      {windows, true, kPatience, plan_.manager},
      [this](xcb_window_t window) { requests_.minimise(window); }, std::move(then));
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

}  // namespace linux_desktop
