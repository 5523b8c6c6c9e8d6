#pragma once

#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "desktop/linux/x11/ClientWindows.h"
#include "desktop/linux/x11/XEvents.h"

namespace linux_desktop {

/// Waits for windows to be minimised, or to be so no more, by the events of their state.
class HiddenStateWait {
 public:
  /// Gets the windows that did not come to be as wanted.
  using Done = std::function<void(std::vector<xcb_window_t> left)>;

  /// Both outlive this.
  HiddenStateWait(XEvents& events, ClientWindows& clients);

  /// Call before the requests that are to be waited for. `done` comes later, once: when all windows
  /// are as wanted, or when nothing has changed for as long as `patience`. Starting anew gives up
  /// the wait before.
  void start(std::vector<xcb_window_t> windows, bool minimised, std::chrono::milliseconds patience,
             Done done);

 private:
  void changed(xcb_window_t window);
  void look(bool patienceIsOver);

  XEvents& events_;
  ClientWindows& clients_;
  std::vector<std::unique_ptr<XEvents::Watch>> watches_;
  std::vector<xcb_window_t> waitingFor_;
  /// Those that have not changed since the last look.
  std::unordered_set<xcb_window_t> silent_;
  bool minimised_ = false;
  Done done_;
  QTimer patience_;
};

}  // namespace linux_desktop
