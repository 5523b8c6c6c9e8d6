#pragma once

#include <cstddef>
#include <memory>

#include "platform/appkit/NSEvent.h"

namespace platform {
class NSImage;
class NSMenu;
}  // namespace platform

namespace platform::port {

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
  /// Opens `menu` at the item. The peer copies what it needs: titles and whether enabled.
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
