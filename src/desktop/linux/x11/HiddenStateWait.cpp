#include "desktop/linux/x11/HiddenStateWait.h"

#include <algorithm>
#include <utility>
#include "desktop/linux/x11/XLog.h"

namespace linux_desktop {

HiddenStateWait::HiddenStateWait(XEvents& events, ClientWindows& clients)
    : events_(events), clients_(clients) {
  patience_.setSingleShot(true);
  QObject::connect(&patience_, &QTimer::timeout, &patience_, [this] { look(true); });
}

void HiddenStateWait::start(std::vector<xcb_window_t> windows, bool minimised,
                            std::chrono::milliseconds patience, Done done) {
  watches_.clear();
  waitingFor_ = std::move(windows);
  silent_ = {waitingFor_.begin(), waitingFor_.end()};
  minimised_ = minimised;
  done_ = std::move(done);
  for (const xcb_window_t window : waitingFor_) {
    watches_.push_back(events_.watch(
        window, XCB_EVENT_MASK_PROPERTY_CHANGE, [this, window](const xcb_generic_event_t& event) {
          if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return;
          const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
          if (change.atom == clients_.atoms()[ClientAtom::State]) changed(window);
        }));
  }
  patience_.start(waitingFor_.empty() ? std::chrono::milliseconds::zero() : patience);
}

void HiddenStateWait::changed(xcb_window_t window) {
  // Looking only when every window has changed costs one round trip instead of one a window.
  if (silent_.erase(window) == 0) return;
  if (silent_.empty()) {
    look(false);
  } else {
    patience_.start();
  }
}

void HiddenStateWait::look(bool patienceIsOver) {
  const auto minimised = clients_.minimisedOf(waitingFor_);
  std::erase_if(waitingFor_,
                [&](xcb_window_t window) { return minimised.contains(window) == minimised_; });
  qCDebug(lcX11) << "look" << patienceIsOver << minimised_ << waitingFor_.size();
  if (!waitingFor_.empty() && !patienceIsOver) {
    silent_ = {waitingFor_.begin(), waitingFor_.end()};
    patience_.start();
    return;
  }
  patience_.stop();
  watches_.clear();
  // What is done next may start the next wait.
  const Done done = std::exchange(done_, nullptr);
  if (done) done(std::exchange(waitingFor_, {}));
}

}  // namespace linux_desktop
