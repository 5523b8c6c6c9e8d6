#include "desktop/linux/x11/HiddenWatch.h"

#include <span>

namespace linux_desktop {

HiddenWatch::HiddenWatch(XEvents& events, ClientWindows& clients)
    : events_(events), clients_(clients) {}

void HiddenWatch::follow(const ClientList& list) {
  hidden_.clear();
  for (const ClientWindow& window : list.windows) {
    if (window.mark != kHidden) continue;
    // Also one that is back already: that it is active may be told only now.
    hidden_.insert(window.id);
    if (window.id == list.active) expectBack(window.id);
  }
  if (hidden_.empty()) {
    root_.reset();
  } else if (!root_) {
    resume();
  }
}

void HiddenWatch::resume() {
  root_ = events_.watchProperty(events_.server().root(), "_NET_ACTIVE_WINDOW",
                                [this] { activeWindowChanged(); });
}

void HiddenWatch::pause() {
  root_.reset();
  back_.reset();
}

void HiddenWatch::activeWindowChanged() {
  const auto active = events_.server().number(events_.server().root(), "_NET_ACTIVE_WINDOW");
  if (active && hidden_.contains(*active)) expectBack(*active);
}

void HiddenWatch::expectBack(xcb_window_t active) {
  back_ = events_.watchProperty(active, "_NET_WM_STATE", [this, active] { lookAt(active); });
  lookAt(active);
}

void HiddenWatch::lookAt(xcb_window_t active) {
  if (clients_.minimisedOf(std::span(&active, 1)).contains(active)) return;
  back_.reset();
  hidden_.erase(active);
  clients_.mark(active, kBroughtForward);
  xcb_flush(events_.server().get());
}

}  // namespace linux_desktop
