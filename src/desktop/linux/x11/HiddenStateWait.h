#pragma once

#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "desktop/linux/x11/ClientWindows.h"
#include "desktop/linux/x11/WindowManagerTurn.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

/// Waits for windows to be minimised, or to be so no more, by the events of their state.
class HiddenStateWait {
 public:
  struct Goal {
    std::vector<xcb_window_t> windows;
    bool minimised;
    /// How long nothing may change once the window manager has come to the requests. One that is
    /// too busy for them is waited for much longer, where it `tellsTurn`.
    std::chrono::milliseconds patience;
    bool tellsTurn;
  };
  using Request = std::function<void(xcb_window_t window)>;
  /// Gets the windows that did not come to be as wanted.
  using Done = std::function<void(std::vector<xcb_window_t> left)>;

  /// Both outlive this.
  HiddenStateWait(XEvents& events, ClientWindows& clients);

  /// Makes the request for each window and sends them. `done` comes later, once: when all windows
  /// are as wanted, or when the patience is over. Starting anew gives up the wait before.
  void start(const Goal& goal, const Request& request, Done done);

 private:
  void watch(xcb_window_t window);
  void changed(xcb_window_t window);
  void turnHasCome();
  void look(bool patienceIsOver);

  XEvents& events_;
  ClientWindows& clients_;
  std::vector<std::unique_ptr<XEvents::Watch>> watches_;
  std::vector<xcb_window_t> waitingFor_;
  /// Those that have not changed since the last look.
  std::unordered_set<xcb_window_t> silent_;
  bool minimised_ = false;
  std::chrono::milliseconds patienceAfterTurn_{};
  std::unique_ptr<WindowManagerTurn> turn_;
  Done done_;
  QTimer patience_;
};

}  // namespace linux_desktop
