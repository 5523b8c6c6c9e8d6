#pragma once

#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/NSObject.h"
#include "platform/foundation/Value.h"

namespace platform {

/// What observers are sent.
class NSNotification final : public NSObject {
 public:
  NSNotification(std::string name, const NSObject* object, std::optional<Dictionary> userInfo)
      : name_(std::move(name)), object_(object), userInfo_(std::move(userInfo)) {}

  [[nodiscard]] const std::string& name() const { return name_; }
  /// The sender, for comparison; null when the poster named none.
  [[nodiscard]] const NSObject* object() const { return object_; }
  [[nodiscard]] const std::optional<Dictionary>& userInfo() const { return userInfo_; }

 private:
  std::string name_;
  const NSObject* object_;
  std::optional<Dictionary> userInfo_;
};

/// Tells observers by name, at once and in the order in which they were added. Main thread only.
///
/// Observers are not owned, and one that is gone is forgotten. Adding and removing is allowed at
/// any time: an observer that is removed while a notification is under way is not told any more,
/// one that is added is told from the next on.
class NSNotificationCenter final : public NSObject {
 public:
  [[nodiscard]] static NSNotificationCenter& defaultCenter();

  /// `object` null: from any sender. Adding the same twice means being told twice.
  void addObserver(const std::shared_ptr<NSObject>& observer, SEL selector, std::string name,
                   const NSObject* object = nullptr);
  /// Removes every registration of `observer` for `name`, from any sender when `object` is null.
  void removeObserver(const NSObject& observer, std::string_view name,
                      const NSObject* object = nullptr);
  void postNotificationName(std::string name, const NSObject* object = nullptr,
                            std::optional<Dictionary> userInfo = std::nullopt);
  /// How many registrations of living observers there are for that name.
  [[nodiscard]] std::size_t observerCount(std::string_view name) const;

 private:
  struct Registration {
    std::weak_ptr<NSObject> observer;
    SEL selector;
    std::string name;
    const NSObject* object = nullptr;
    bool removed = false;
  };
  void forgetRemoved();

  // Entries are marked while a post is under way and taken out afterwards, so that positions hold.
  std::list<Registration> registrations_;
  int posting_ = 0;
};

/// Tells other programs. On a desktop without such messages nobody hears. Main thread only.
class NSDistributedNotificationCenter final : public NSObject {
 public:
  [[nodiscard]] static NSDistributedNotificationCenter& defaultCenter();
  /// Without sender or user info, and at once, also to programs that are in the background.
  void postNotificationName(std::string_view name);
};

}  // namespace platform
