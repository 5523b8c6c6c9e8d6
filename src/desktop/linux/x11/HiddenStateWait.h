#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <unordered_set>
#include <vector>

#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/x11/ClientWindows.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

/// Notices when the user brings a hidden window forward, so that minimising it later is the user's
/// doing. Wakes the program only while windows are hidden, when another window becomes active.
class HiddenWatch {
 public:
  /// Both outlive this.
  HiddenWatch(XEvents& events, ClientWindows& clients);

  /// Goes on with what is hidden now; ends when nothing is. A window that is active already was
  /// brought forward meanwhile.
  void follow(const ClientList& list);
  /// While windows are being hidden or shown they become active without the user.
  void pause();
  /// Before the list for `follow` is read, so that nothing falls between the two.
  void resume();

 private:
  void activeWindowChanged();
  /// Notes that the active window was brought forward, as soon as it is back.
  void expectBack(xcb_window_t active);
  void lookAt(xcb_window_t active);

  XEvents& events_;
  ClientWindows& clients_;
  std::unordered_set<xcb_window_t> hidden_;
  std::unique_ptr<XEvents::Watch> root_;
  /// For the window that became active last; some window managers say so before it is back.
  std::unique_ptr<XEvents::Watch> back_;
};

/// Tells when the window manager has come to everything that was sent to it before: by a question
/// that it answers in its turn. Until then its silence means that it is busy, not that it refuses.
class WindowManagerTurn {
 public:
  /// Asks at once, behind all requests that were made before; `come` is called later, at most once,
  /// and not where the window manager does not answer such questions. `events` outlives this.
  WindowManagerTurn(XEvents& events, std::function<void()> come);
  ~WindowManagerTurn();
  WindowManagerTurn(const WindowManagerTurn&) = delete;
  WindowManagerTurn& operator=(const WindowManagerTurn&) = delete;

 private:
  XServer& server_;
  /// Never on the screen.
  xcb_window_t window_;
  std::function<void()> come_;
  std::unique_ptr<XEvents::Watch> answer_;
};

/// Waits for windows to be minimised, or to be so no more, by the events of their state.
class HiddenStateWait {
 public:
  struct Goal {
    std::vector<xcb_window_t> windows;
    bool minimised;
    /// How long nothing may change once the window manager has come to the requests. Where it
    /// tells its turn, one that is busy is waited for much longer, and one that hangs for ever:
    /// what it was asked for still waits at its door, and nothing else may be asked for meanwhile.
    /// When all windows are as wanted by these requests, its turn is not waited for long.
    std::chrono::milliseconds patience;
    WindowManagerAtWork manager;
  };
  using Request = std::function<void(xcb_window_t window)>;
  /// Gets the windows that did not come to be as wanted.
  using Done = std::function<void(std::vector<xcb_window_t> left)>;

  /// Both outlive this.
  HiddenStateWait(XEvents& events, ClientWindows& clients);
  [[nodiscard]] ClientWindows& clients() const { return clients_; }

  /// Makes the request for each window and sends them. `done` comes later, once: when all windows
  /// are as wanted, when the patience is over, or at once when the window manager is gone. Starting
  /// anew gives up the wait before. That a window manager hangs is one line on standard error.
  void start(const Goal& goal, const Request& request, Done done);

  /// Of the last wait.
  [[nodiscard]] bool managerIsGone() const { return managerIsGone_; }

 private:
  void watch(xcb_window_t window);
  void watchManager(xcb_window_t window);
  void giveItsTurnTime();
  void changed(xcb_window_t window);
  void turnHasCome();
  void patienceIsOver();
  /// Settles nothing before the turn: only whether there is anything left to wait for but that.
  void look();
  [[nodiscard]] std::vector<xcb_window_t> notYetWell() const;
  void end(std::vector<xcb_window_t> left);

  XEvents& events_;
  ClientWindows& clients_;
  std::vector<std::unique_ptr<XEvents::Watch>> watches_;
  /// Since the requests.
  bool managerShowsLife_ = false;
  bool managerIsGone_ = false;
  /// Something that it was asked for, in an earlier wait too, may still lie at its door.
  bool managerIsBehind_ = false;
  /// But for the turn that has not come.
  bool allSeemWell_ = false;
  Goal goal_{};
  /// Those that have not changed since the last look.
  std::unordered_set<xcb_window_t> silent_;
  std::unique_ptr<WindowManagerTurn> turn_;
  Done done_;
  OneShot patience_;
};

}  // namespace linux_desktop
