#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/appkit/NSEvent.h"
#include "platform/appkit/NSView.h"

namespace platform {
class NSAlert;
class NSImage;
class NSMenu;
class NSOpenPanel;
class NSWindow;
}  // namespace platform

namespace platform::port {

class StatusItemPeer;

/// In the middle of the screen that the user is on.
struct PlacedByDesktop {};
/// At a status item, on the side of it where there is room. Where the desktop shows no status item
/// the window opens as an ordinary one, and offers the item's menu too (the user asking for it is a
/// RightMouseUp of the item).
struct PlacedAtStatusItem {
  StatusItemPeer* item = nullptr;
};
/// At the window's own frame and level.
struct PlacedAtFrame {
  /// Behind the windows of its level, else in front of them.
  bool behind = false;
};
using Placement = std::variant<PlacedByDesktop, PlacedAtStatusItem, PlacedAtFrame>;

/// What a window's peer reports, on the main thread and never from inside a call of the peer.
class WindowClient {
 public:
  virtual ~WindowClient() = default;

  virtual void windowDidBecomeKey() = 0;
  virtual void windowDidResignKey() = 0;
  /// The user wants the window closed: the title bar's button, or Escape in a popover. The
  /// window is still there.
  virtual void windowShouldClose() = 0;
  /// The user pressed a button outside the window, or turned to another program. Once for each such
  /// act. A click on the window's own status item is none, but for one that asks for the menu: that
  /// is reported here first, unless the window itself offers the menu. What the user does in an
  /// alert that the window waits for is none either.
  virtual void userActedElsewhere() = 0;
  /// A press and a release of the main button on `view`; a release always follows its press. Keys
  /// and assistive technology that flip a control report both, on the control.
  virtual void mouseDown(NSView& view, const NSEvent& event) = 0;
  virtual void mouseUp(NSView& view, const NSEvent& event) = 0;
  /// A key press in a titled window; none for a modifier key alone. What the controls of the window
  /// need without any modifier stays theirs and is not reported: Tab, and Space and Return on a
  /// control that they act on. Shift-Tab is reported, and goes back to the control before as well.
  /// Repeats of a held key are not reported.
  virtual void keyDown(const NSEvent& event) = 0;
};

/// One view that changed, and how.
struct ChangedView {
  std::shared_ptr<NSView> view;
  ViewChange change;
};

/// A window on the screen. It shows its NSWindow's content view by reading the model; it paints
/// what is animating from the presentation values for as long as something is.
class WindowPeer {
 public:
  virtual ~WindowPeer() = default;

  /// Puts the window on the screen, in front of the application's others. Shown again: moves it.
  /// A borderless window appears once it has content: at no moment is it seen empty.
  virtual void show(const Placement& placement) = 0;
  virtual void hide() = 0;
  /// Asks for the keyboard; the desktop may refuse. A shown window comes to the front, and to the
  /// user who minimised it or went to another space.
  virtual void makeKey() = 0;
  /// The window's frame or its views changed. Comes once a turn of the loop at most, with each view
  /// once; what it tells reaches the screen as a whole. A content view that was replaced is among
  /// the changes.
  virtual void update(const std::vector<ChangedView>& changes, bool frameChanged) = 0;
};

/// Windows and alerts.
class Windows {
 public:
  virtual ~Windows() = default;

  /// Makes the peer of `window`, not shown yet. `window` and `client` outlive it. Never null.
  [[nodiscard]] virtual std::unique_ptr<WindowPeer> createWindow(NSWindow& window,
                                                                 WindowClient& client) = 0;

  /// Something on the screen that the user must answer. Destroying it takes it away unanswered.
  class ModalPeer {
   public:
    virtual ~ModalPeer() = default;
  };
  /// Shows `alert` in front of all windows of the application, which take no input until it is
  /// answered. `answered` gets the index of the chosen button, once, later.
  [[nodiscard]] virtual std::unique_ptr<ModalPeer> showAlert(
      const NSAlert& alert, std::function<void(std::size_t button)> answered) = 0;
  /// Shows `alert` on `window`, which takes no input until it is answered; the application's other
  /// windows do. `window` is shown.
  [[nodiscard]] virtual std::unique_ptr<ModalPeer> showSheet(
      const NSAlert& alert, WindowPeer& window,
      std::function<void(std::size_t button)> answered) = 0;
  /// Lets the user choose a file, as the panel says. `answered` gets its absolute path, or none
  /// when the user chose nothing; once, later. The titled window in which the user asked for it
  /// takes no input meanwhile; a panel at a status item does.
  [[nodiscard]] virtual std::unique_ptr<ModalPeer> showOpenPanel(
      const NSOpenPanel& panel, std::function<void(std::optional<std::string> path)> answered) = 0;

  /// Brings the application to the foreground; the desktop may refuse.
  virtual void activateApplication() = 0;
  /// While they are not enabled, keys that the desktop would act on come to the titled window that
  /// has the keyboard, as far as the desktop gives them up. They are at first.
  virtual void setDesktopKeysEnabled(bool /*enabled*/) {}
};

/// What a status item's peer reports. Called on the main thread, never from inside a call of the
/// peer.
class StatusItemClient {
 public:
  virtual ~StatusItemClient() = default;

  /// The user clicked the item: LeftMouseUp, or RightMouseUp where the menu is wanted. Every click
  /// is reported, also while the popover or the menu is open. Where the desktop draws menus itself,
  /// the first sign that it wants the menu is the RightMouseUp. `openMenu` normally follows before
  /// the report returns, and later while the application is busy (see MainLoop::sleep).
  virtual void statusItemClicked(NSEventType type) = 0;
  /// The user chose the item at `index` of the menu that was opened last. Comes before the close.
  virtual void menuItemChosen(std::size_t index) = 0;
  /// The menu that was opened last is gone. Once for each `openMenu`.
  virtual void menuDidClose() = 0;
};

/// An item in the desktop's status area. Destroying it takes it away.
class StatusItemPeer {
 public:
  virtual ~StatusItemPeer() = default;

  /// Shows `image`, or an empty item for null. The image outlives the peer.
  virtual void setImage(const NSImage* image) = 0;
  /// What the item says when the pointer rests on it, and to assistive technology.
  virtual void setToolTip(const std::string& text) = 0;
  /// Opens `menu` at the item. The peer copies what it needs: the titles.
  virtual void openMenu(const NSMenu& menu) = 0;
};

/// The status area (menu bar, tray). The item is there for as long as its peer lives: a host that
/// comes late, goes, restarts or hangs is the desktop's affair, and the caller never waits for one.
class StatusBar {
 public:
  virtual ~StatusBar() = default;

  /// Never null. `client` outlives the peer.
  [[nodiscard]] virtual std::unique_ptr<StatusItemPeer> createStatusItem(
      StatusItemClient& client) = 0;
  /// Whether items have a button that can be clicked and anchored to. A fact of the desktop.
  [[nodiscard]] virtual bool itemsHaveButtons() const = 0;
};

}  // namespace platform::port
