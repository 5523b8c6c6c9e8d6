#pragma once

#include <memory>

#include "platform/appkit/NSMenu.h"
#include "platform/appkit/NSStatusBarButton.h"
#include "platform/port/Windows.h"

namespace platform {

/// An item of the status bar. It is on the screen for as long as it lives.
class NSStatusItem final : public NSObject,
                           private port::StatusItemClient,
                           private StatusButtonOwner {
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

 private:
  void statusItemClicked(NSEventType type) override;
  void menuItemChosen(std::size_t index) override;
  void menuDidClose() override;
  void buttonImageDidChange(const NSImage* image) override;
  void buttonToolTipDidChange(const std::string& text) override;
  bool openAttachedMenu() override;
  [[nodiscard]] port::StatusItemPeer& peer() override { return *peer_; }

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
