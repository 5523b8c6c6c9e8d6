#pragma once

#include <functional>
#include <vector>

#include "desktop/linux/x11/HideOperation.h"
#include "desktop/linux/x11/ShowOrder.h"

namespace linux_desktop {

/// Brings hidden windows back: in the order, on the workspaces and beside the active window of
/// before, or with the active window of back then. Each window manager heeds another way of asking,
/// so that the gentlest goes first.
class ShowOperation final : public HiddenOperation {
 public:
  struct Plan {
    std::vector<xcb_window_t> windows;
    /// Everything as it is before.
    ClientList before;
  };

  /// Asks at once. `done` comes later, when all are back or do not come, or when the window manager
  /// is gone: then their marks stay, for the next one. `events` and `clients` outlive this.
  ShowOperation(XEvents& events, ClientWindows& clients, Plan plan, std::function<void()> done);

 private:
  enum class Way { RemoveState, Map, Activate };

  [[nodiscard]] Way firstWay() const;
  void ask(Way way, std::vector<xcb_window_t> windows);
  void askFor(Way way, xcb_window_t window);
  void asked(Way way, std::vector<xcb_window_t> left);
  /// Puts back what window managers change on the way.
  void putBack();
  /// The window that was active, or the one from when the windows went if it was none to work in;
  /// none where all is well.
  [[nodiscard]] xcb_window_t toActivate(const ClientWindows::Places& now,
                                        const WindowSet& shown) const;
  void activate(xcb_window_t window);
  void putBackDesktops(const ClientWindows::Places& now);
  void putBackOrder(const ClientWindows::Places& now, const WindowSet& shown);
  void clearMarks(const WindowSet& shown);

  ClientWindows& clients_;
  HideRequests requests_;
  HiddenStateWait wait_;
  Plan plan_;
  std::unordered_map<xcb_window_t, std::uint32_t> desktops_;
  std::function<void()> done_;
};

}  // namespace linux_desktop
