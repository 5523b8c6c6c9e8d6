#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/foundation/ClassDescription.h"

namespace platform {

/// The name of a message, with a colon where it takes an argument ("togglePopover:").
using SEL = std::string;

/// The root class: shared ownership and messages by name.
///
/// Objects are made with std::make_shared. A strong reference is a std::shared_ptr, a weak one a
/// std::weak_ptr. Names reach in from the storyboard, menus, timers, notifications and the
/// responder chain; code that calls code makes plain calls. Main thread only.
class NSObject : public std::enable_shared_from_this<NSObject> {
 public:
  NSObject() = default;
  virtual ~NSObject() = default;
  NSObject(const NSObject&) = delete;
  NSObject& operator=(const NSObject&) = delete;

  /// The tables of the object's class; a subclass that adds rows overrides it.
  [[nodiscard]] virtual const ClassDescription& classDescription() const;

  [[nodiscard]] bool respondsToSelector(std::string_view selector) const;

  /// Sends the message. `argument` may be null. A selector that the class does not answer, or an
  /// argument that the method cannot take, is a programming error.
  void performSelector(std::string_view selector, NSObject* argument = nullptr);

  /// Connects an outlet by name. False when the class has no such outlet or `object` is not of the
  /// outlet's class.
  [[nodiscard]] bool connectOutlet(std::string_view name, const std::shared_ptr<NSObject>& object);

  /// Sets a key-value attribute from its text in an interface description. False when the class has
  /// no such key or the text is not of its type.
  [[nodiscard]] bool setValueForKey(std::string_view key, std::string_view text);
};

}  // namespace platform
