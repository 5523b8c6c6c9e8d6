#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/foundation/NSObject.h"

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

}  // namespace platform
