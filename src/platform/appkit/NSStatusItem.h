#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSImage.h"
#include "platform/port/Windows.h"

namespace platform {

class NSMenu;

/// Told when a menu it is the delegate of has closed. Optional part of an object's interface.
class NSMenuDelegate {
 public:
  virtual ~NSMenuDelegate() = default;
  virtual void menuDidClose(NSMenu& menu) = 0;
};

/// One line of a menu.
class NSMenuItem final : public NSObject {
 public:
  NSMenuItem(std::string title, SEL action)
      : title_(std::move(title)), action_(std::move(action)) {}

  [[nodiscard]] const std::string& title() const { return title_; }
  [[nodiscard]] const SEL& action() const { return action_; }

 private:
  std::string title_;
  SEL action_;
};

/// A list of items. How it is shown is the desktop's affair; see NSStatusItem for when.
class NSMenu final : public NSObject {
 public:
  explicit NSMenu(std::string title) : title_(std::move(title)) {}

  /// `keyEquivalent` is empty: no item has a key.
  void addItemWithTitle(std::string title, SEL action, std::string_view keyEquivalent);
  [[nodiscard]] const std::string& title() const { return title_; }
  [[nodiscard]] const std::vector<std::shared_ptr<NSMenuItem>>& itemArray() const { return items_; }

  /// Not owned.
  void setDelegate(const std::shared_ptr<NSMenuDelegate>& delegate) { delegate_ = delegate; }
  [[nodiscard]] std::shared_ptr<NSMenuDelegate> delegate() const { return delegate_.lock(); }

  /// Sends the item's action up the responder chain. An index out of range is ignored: what the
  /// user saw may be older than the menu.
  void performActionForItemAtIndex(std::size_t index);

 private:
  std::string title_;
  std::vector<std::shared_ptr<NSMenuItem>> items_;
  std::weak_ptr<NSMenuDelegate> delegate_;
};

class NSStatusItem;

/// The clickable part of a status item, which outlives its use.
class NSStatusBarButton final : public NSControl {
 public:
  explicit NSStatusBarButton(NSStatusItem& item) : item_(item) {}

  void setImage(std::shared_ptr<NSImage> image);
  /// What the button says when the pointer rests on it, and to assistive technology.
  void setToolTip(const std::string& text);
  /// The kinds of events on which the action is sent; left-mouse-up at first.
  void sendActionOn(NSEventMask mask) { sendsActionOn_ = mask; }

  /// Acts like a click: opens the attached menu if there is one, else sends the action.
  void performClick(NSObject* sender);
  /// A real click. The action goes out for the kinds of `sendActionOn` only.
  void click(NSEventType type);

  /// Where windows that hang on the button are placed.
  [[nodiscard]] port::StatusItemPeer& statusItemPeer() const;

 private:
  NSStatusItem& item_;
  /// What the peer shows.
  std::shared_ptr<NSImage> image_;
  NSEventMask sendsActionOn_ = maskOf(NSEventType::LeftMouseUp);
};

/// An item of the status bar. It is on the screen for as long as it lives.
class NSStatusItem final : public NSObject, private port::StatusItemClient {
 public:
  /// As wide as its content needs.
  static constexpr double kVariableLength = -1.0;

  explicit NSStatusItem(double length);

  [[nodiscard]] double length() const { return length_; }
  /// Null on a desktop whose items have none.
  [[nodiscard]] const std::shared_ptr<NSStatusBarButton>& button() const { return button_; }

  /// While a menu is attached a click opens it in place of sending the button's action.
  [[nodiscard]] const std::shared_ptr<NSMenu>& menu() const { return menu_; }
  void setMenu(std::shared_ptr<NSMenu> menu) { menu_ = std::move(menu); }

  // --- For its button ---
  [[nodiscard]] port::StatusItemPeer& peer() { return *peer_; }
  /// False when none is attached.
  bool openAttachedMenu();

 private:
  void statusItemClicked(NSEventType type) override;
  void menuItemChosen(std::size_t index) override;
  void menuDidClose() override;

  double length_;
  std::unique_ptr<port::StatusItemPeer> peer_;
  std::shared_ptr<NSStatusBarButton> button_;
  std::shared_ptr<NSMenu> menu_;
  /// The menu that is open, or was last; it may be detached before the choice arrives.
  std::shared_ptr<NSMenu> openMenu_;
};

/// The system's status bar.
class NSStatusBar final : public NSObject {
 public:
  [[nodiscard]] static NSStatusBar& systemStatusBar();
  [[nodiscard]] std::shared_ptr<NSStatusItem> statusItemWithLength(double length);
};

}  // namespace platform
