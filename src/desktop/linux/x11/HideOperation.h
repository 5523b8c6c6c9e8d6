#pragma once

#include <functional>
#include <vector>

#include "desktop/linux/x11/HiddenStateWait.h"
#include "desktop/linux/x11/HideRequests.h"

namespace linux_desktop {

/// What goes on with windows until it is finished.
class HiddenOperation {
 public:
  virtual ~HiddenOperation() = default;
};

/// Takes windows off the screen.
class HideOperation final : public HiddenOperation {
 public:
  struct Plan {
    /// In the stacking order of before, with those that are hidden already.
    std::vector<xcb_window_t> order;
    /// The one that is to be active again, of those and these.
    xcb_window_t active = XCB_NONE;
    std::vector<xcb_window_t> windows;
    /// Dialogs of those, which most window managers take away with them.
    std::vector<xcb_window_t> followers;
    WindowManagerAtWork manager;
  };

  /// Asks at once. `done` comes later, when all are gone or refuse, or the window manager is gone;
  /// their marks stay in any case. `events` and `clients` outlive this.
  HideOperation(XEvents& events, ClientWindows& clients, Plan plan, std::function<void()> done);

 private:
  void hide(const std::vector<xcb_window_t>& windows, HiddenStateWait::Done then);
  void hideFollowersLeft();

  ClientWindows& clients_;
  HideRequests requests_;
  HiddenStateWait wait_;
  Plan plan_;
  std::function<void()> done_;
};

}  // namespace linux_desktop
