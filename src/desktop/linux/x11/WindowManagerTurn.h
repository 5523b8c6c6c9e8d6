#pragma once

#include <functional>
#include <memory>

#include "desktop/linux/x11/ClientWindows.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

/// Tells when the window manager has come to everything that was sent to it before: by a question
/// that it answers in its turn. Until then its silence means that it is busy, not that it refuses.
class WindowManagerTurn {
 public:
  /// Asks at once, behind all requests that were made before; `come` is called later, at most once,
  /// and not where the window manager does not answer such questions. Both outlive this.
  WindowManagerTurn(XEvents& events, const ClientWindows& clients, std::function<void()> come);
  ~WindowManagerTurn();
  WindowManagerTurn(const WindowManagerTurn&) = delete;
  WindowManagerTurn& operator=(const WindowManagerTurn&) = delete;

 private:
  void ask() const;

  XServer& server_;
  const ClientWindows& clients_;
  /// Never on the screen.
  xcb_window_t window_;
  std::function<void()> come_;
  std::unique_ptr<XEvents::Watch> answer_;
};

}  // namespace linux_desktop
