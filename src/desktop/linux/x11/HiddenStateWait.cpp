#include "desktop/linux/x11/HiddenStateWait.h"

#include <span>
#include <utility>

#include "desktop/linux/log/Log.h"

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

WindowManagerTurn::WindowManagerTurn(XEvents& events, std::function<void()> come)
    : server_(events.server()), window_(xcb_generate_id(server_.get())), come_(std::move(come)) {
  // IceWM answers only for a window that it could manage: one with pixels.
  xcb_create_window(server_.get(), XCB_COPY_FROM_PARENT, window_, server_.root(), -1, -1, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
  answer_ = events.watchProperty(window_, "_NET_FRAME_EXTENTS", [this] {
    // What is done about it may end this.
    if (const auto then = std::exchange(come_, nullptr)) then();
  });
  server_.askManager(window_, "_NET_REQUEST_FRAME_EXTENTS", {});
}

WindowManagerTurn::~WindowManagerTurn() {
  answer_.reset();
  xcb_destroy_window(server_.get(), window_);
}

namespace {

/// One that has done nothing at all by then hangs.
constexpr std::chrono::milliseconds kLongestSilence{3'000};
/// Bounds the wait for one that does something and says it tells its turn, but does not.
constexpr std::chrono::milliseconds kPatienceWithTheBusy{10'000};
/// For the turn alone, when everything has happened: Fluxbox says that it tells it, and does not.
constexpr std::chrono::milliseconds kPatienceWithTheTurn{200};

}  // namespace

HiddenStateWait::HiddenStateWait(XEvents& events, ClientWindows& clients)
    : events_(events),
      clients_(clients),
      patience_(kLongestSilence, [this] { patienceIsOver(); }) {}

void HiddenStateWait::start(const Goal& goal, const Request& request, Done done) {
  watches_.clear();
  turn_.reset();
  goal_ = goal;
  silent_ = {goal.windows.begin(), goal.windows.end()};
  managerShowsLife_ = managerIsGone_ = allSeemWell_ = false;
  done_ = std::move(done);
  for (const xcb_window_t window : goal.windows) watch(window);
  watchManager(goal.manager.window);
  for (const xcb_window_t window : goal.windows) request(window);
  if (goal.manager.tellsTurn && !goal.windows.empty()) {
    turn_ = std::make_unique<WindowManagerTurn>(events_, [this] { turnHasCome(); });
    patience_.start(kLongestSilence);
  } else {
    patience_.start(goal.windows.empty() ? std::chrono::milliseconds::zero() : goal.patience);
  }
  xcb_flush(events_.server().get());
}

void HiddenStateWait::watch(xcb_window_t window) {
  watches_.push_back(
      events_.watchProperty(window, "_NET_WM_STATE", [this, window] { changed(window); }));
}

void HiddenStateWait::watchManager(xcb_window_t window) {
  if (window == XCB_NONE) return;
  const auto gone = [this] {
    managerIsGone_ = true;
    end(goal_.windows);
  };
  watches_.push_back(events_.watch(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                                   [gone](const xcb_generic_event_t& event) {
                                     if (typeOf(event) == XCB_DESTROY_NOTIFY) gone();
                                   }));
  const xcb_window_t root = events_.server().root();
  // Another one has come. Its predecessor may have gone before we watched its window.
  watches_.push_back(events_.watchProperty(root, "_NET_SUPPORTING_WM_CHECK", gone));
  for (const char* itsOwn : {"_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST_STACKING"}) {
    watches_.push_back(events_.watchProperty(root, itsOwn, [this] {
      if (turn_) giveItsTurnTime();
    }));
  }
}

void HiddenStateWait::giveItsTurnTime() {
  managerShowsLife_ = true;
  if (!allSeemWell_) patience_.start(kPatienceWithTheBusy);
}

void HiddenStateWait::turnHasCome() {
  turn_.reset();
  managerIsBehind_ = false;
  patience_.setInterval(goal_.patience);
  if (silent_.empty()) {
    look();
  } else {
    patience_.start();
  }
}

void HiddenStateWait::changed(xcb_window_t window) {
  if (silent_.erase(window) == 0) return;
  if (turn_) {
    giveItsTurnTime();
  } else {
    patience_.start();
  }
  // Looking only when every window has changed costs one round trip instead of one a window.
  if (!silent_.empty()) return;
  // What changes before the turn may be the end of what was asked for earlier.
  if (!turn_ || !managerIsBehind_) look();
}

void HiddenStateWait::look() {
  const std::vector<xcb_window_t> left = notYetWell();
  silent_ = {left.begin(), left.end()};
  allSeemWell_ = left.empty();
  if (turn_) {
    if (allSeemWell_) patience_.start(kPatienceWithTheTurn);
  } else if (allSeemWell_) {
    end(left);
  } else {
    goal_.windows = left;
    patience_.start();
  }
}

std::vector<xcb_window_t> HiddenStateWait::notYetWell() const {
  const auto minimised = clients_.minimisedOf(goal_.windows);
  std::vector<xcb_window_t> left = goal_.windows;
  std::erase_if(left,
                [&](xcb_window_t window) { return minimised.contains(window) == goal_.minimised; });
  return left;
}

void HiddenStateWait::patienceIsOver() {
  if (turn_ && !managerShowsLife_) {
    qCWarning(lcX11,
              "the window manager does not answer: windows of other programs hide and come back "
              "when it does");
    return;
  }
  end(notYetWell());
}

void HiddenStateWait::end(std::vector<xcb_window_t> left) {
  patience_.stop();
  watches_.clear();
  const bool mayStillCome = turn_ && (managerIsBehind_ || !left.empty());
  managerIsBehind_ = mayStillCome && !managerIsGone_;
  turn_.reset();
  // What is done next may start the next wait.
  const Done done = std::exchange(done_, nullptr);
  if (done) done(std::move(left));
}

}  // namespace linux_desktop
