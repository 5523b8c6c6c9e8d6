#include "desktop/linux/x11/HiddenStateWait.h"

#include <algorithm>
#include <utility>

namespace linux_desktop {
namespace {

/// Bounds the wait for a window manager that says it tells its turn, but does not.
constexpr std::chrono::milliseconds kPatienceWithTheHung{10'000};

}  // namespace

HiddenStateWait::HiddenStateWait(XEvents& events, ClientWindows& clients)
    : events_(events), clients_(clients) {
  patience_.setSingleShot(true);
  QObject::connect(&patience_, &QTimer::timeout, &patience_, [this] { look(true); });
}

void HiddenStateWait::start(const Goal& goal, const Request& request, Done done) {
  watches_.clear();
  turn_.reset();
  waitingFor_ = goal.windows;
  silent_ = {waitingFor_.begin(), waitingFor_.end()};
  minimised_ = goal.minimised;
  patienceAfterTurn_ = goal.patience;
  done_ = std::move(done);
  for (const xcb_window_t window : waitingFor_) watch(window);
  for (const xcb_window_t window : waitingFor_) request(window);
  if (goal.tellsTurn && !waitingFor_.empty()) {
    turn_ = std::make_unique<WindowManagerTurn>(events_, clients_, [this] { turnHasCome(); });
    patience_.start(kPatienceWithTheHung);
  } else {
    patience_.start(waitingFor_.empty() ? std::chrono::milliseconds::zero() : goal.patience);
  }
  xcb_flush(events_.server().get());
}

void HiddenStateWait::watch(xcb_window_t window) {
  watches_.push_back(events_.watch(
      window, XCB_EVENT_MASK_PROPERTY_CHANGE, [this, window](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return;
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.atom == clients_.atoms()[ClientAtom::State]) changed(window);
      }));
}

void HiddenStateWait::turnHasCome() {
  turn_.reset();
  patience_.setInterval(patienceAfterTurn_);
  if (silent_.empty()) {
    look(false);
  } else {
    patience_.start();
  }
}

void HiddenStateWait::changed(xcb_window_t window) {
  // Looking only when every window has changed costs one round trip instead of one a window. What
  // changes before the turn may be the end of what was asked for earlier.
  if (silent_.erase(window) == 0) return;
  if (silent_.empty() && !turn_) {
    look(false);
  } else {
    patience_.start();
  }
}

void HiddenStateWait::look(bool patienceIsOver) {
  const auto minimised = clients_.minimisedOf(waitingFor_);
  std::erase_if(waitingFor_,
                [&](xcb_window_t window) { return minimised.contains(window) == minimised_; });
  if (!waitingFor_.empty() && !patienceIsOver) {
    silent_ = {waitingFor_.begin(), waitingFor_.end()};
    patience_.start();
    return;
  }
  patience_.stop();
  watches_.clear();
  turn_.reset();
  // What is done next may start the next wait.
  const Done done = std::exchange(done_, nullptr);
  if (done) done(std::exchange(waitingFor_, {}));
}

}  // namespace linux_desktop
