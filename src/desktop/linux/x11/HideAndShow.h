#pragma once

#include <functional>
#include <unordered_set>
#include <utility>
#include <vector>

#include "desktop/linux/x11/ClientWindows.h"
#include "desktop/linux/x11/HiddenStateWait.h"

namespace linux_desktop {

/// Windows, bottom to top.
using WindowOrder = std::vector<xcb_window_t>;
using WindowSet = std::unordered_set<xcb_window_t>;

/// `current` with the windows `moved` in it put back to where `remembered` has them: each above the
/// window that was under it then, or under that one. The others keep their order; those that came
/// after `remembered` stay on top.
[[nodiscard]] WindowOrder orderPutBack(const WindowOrder& current, const WindowSet& moved,
                                       const WindowOrder& remembered);

/// What goes on with windows until it is finished.
class HiddenOperation {
 public:
  virtual ~HiddenOperation() = default;
  HiddenOperation(const HiddenOperation&) = delete;
  HiddenOperation& operator=(const HiddenOperation&) = delete;

 protected:
  HiddenOperation(HiddenStateWait& wait, std::function<void()> done)
      : wait_(wait), clients_(wait.clients()), done_(std::move(done)) {}

  HiddenStateWait& wait_;
  ClientWindows& clients_;
  std::function<void()> done_;
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
    /// See WindowManagerHabits.
    bool minimisesLater = false;
  };

  /// Asks at once. `done` comes later, when all are gone or refuse, or the window manager is gone;
  /// their marks stay in any case. `wait` outlives this, and serves one at a time.
  HideOperation(HiddenStateWait& wait, Plan plan, std::function<void()> done);

 private:
  void hide(const std::vector<xcb_window_t>& windows, HiddenStateWait::Done then);
  void hideFollowersLeft();

  Plan plan_;
};

/// Brings hidden windows back: in the order, on the workspaces and beside the active window of
/// before, or with the active window of back then. Each window manager heeds another way of asking,
/// so that the gentlest goes first.
class ShowOperation final : public HiddenOperation {
 public:
  /// Asks at once. `done` comes later, when all are back or do not come, or when the window manager
  /// is gone: then their marks stay, for the next one. `before` is everything as it is now. `wait`
  /// outlives this, and serves one at a time.
  ShowOperation(HiddenStateWait& wait, std::vector<xcb_window_t> windows, ClientList before,
                std::function<void()> done);

 private:
  void ask(ShowWay way, std::vector<xcb_window_t> windows);
  void askFor(ShowWay way, xcb_window_t window);
  void asked(ShowWay way, std::vector<xcb_window_t> left);
  /// Puts back what window managers change on the way.
  void putBack();
  /// The window that was active, or the one from when the windows went if it was none to work in;
  /// none where all is well.
  [[nodiscard]] xcb_window_t toActivate(const ClientList& now, const WindowSet& shown) const;
  void activate(xcb_window_t window);
  void putBackDesktops(const ClientList& now);
  /// `raised` has just been activated, or none.
  void putBackOrder(const ClientList& now, const WindowSet& shown, xcb_window_t raised);
  void clearMarks(const WindowSet& shown);

  std::vector<xcb_window_t> windows_;
  ClientList before_;
};

}  // namespace linux_desktop
