#pragma once

#include <memory>
#include <unordered_set>

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

}  // namespace linux_desktop
