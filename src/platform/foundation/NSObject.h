#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "platform/foundation/NSCoder.h"
#include "platform/foundation/Process.h"

namespace platform {

class NSObject;

/// A message that a class answers by name.
struct MessageRow {
  std::string_view selector;
  void (*send)(NSObject& self, NSObject* argument);
};

/// A reference that the storyboard connects by name.
struct OutletRow {
  std::string_view name;
  bool (*connect)(NSObject& self, const std::shared_ptr<NSObject>& object);
};

/// An attribute that the storyboard sets by name.
struct KeyRow {
  std::string_view key;
  bool (*set)(NSObject& self, std::string_view text);
};

/// What a class answers by name. Tables are constants of the class's .cpp.
struct ClassDescription {
  std::string_view className;
  std::span<const MessageRow> messages{};
  std::span<const OutletRow> outlets{};
  std::span<const KeyRow> keys{};
};

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

  /// Takes what an interface description says of the object, which has just been made. False when
  /// that cannot be read.
  [[nodiscard]] virtual bool initWithCoder(const NSCoder& /*coder*/) { return true; }

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

namespace detail {

template <typename Member>
struct MemberTraits;
template <typename C, typename Result>
struct MemberTraits<Result (C::*)()> {
  using Class = C;
  static constexpr bool takesArgument = false;
};
template <typename C, typename A>
struct MemberTraits<void (C::*)(A)> {
  using Class = C;
  using Argument = A;
  static constexpr bool takesArgument = true;
};
template <typename C, typename T>
struct MemberTraits<std::weak_ptr<T> C::*> {
  using Class = C;
  using Target = T;
};

}  // namespace detail

/// A row for a method `f()`, `void f(NSObject* sender)` (which may be null) or
/// `void f(const SomeObject&)`, for which an argument of another class is a programming error.
template <auto Method>
constexpr MessageRow message(std::string_view selector) {
  using Traits = detail::MemberTraits<decltype(Method)>;
  using Class = typename Traits::Class;
  return {selector, [](NSObject& self, [[maybe_unused]] NSObject* argument) {
            auto& object = static_cast<Class&>(self);
            if constexpr (!Traits::takesArgument) {
              (object.*Method)();
            } else if constexpr (std::is_pointer_v<typename Traits::Argument>) {
              (object.*Method)(argument);
            } else {
              using Wanted = std::remove_reference_t<typename Traits::Argument>;
              auto* wanted = dynamic_cast<Wanted*>(argument);
              if (wanted == nullptr)
                programmingError("a message came with an argument of another class");
              (object.*Method)(*wanted);
            }
          }};
}

/// A row for a member `std::weak_ptr<T>`.
template <auto Member>
constexpr OutletRow outlet(std::string_view name) {
  using Traits = detail::MemberTraits<decltype(Member)>;
  return {name, [](NSObject& self, const std::shared_ptr<NSObject>& object) {
            auto target = std::dynamic_pointer_cast<typename Traits::Target>(object);
            if (!target) return false;
            static_cast<typename Traits::Class&>(self).*Member = target;
            return true;
          }};
}

/// A row for a setter `void f(T)` of a type that has an `attributeFromText`.
template <auto Setter>
constexpr KeyRow keyValue(std::string_view key) {
  using Traits = detail::MemberTraits<decltype(Setter)>;
  using T = std::remove_cvref_t<typename Traits::Argument>;
  return {key, [](NSObject& self, std::string_view text) {
            const std::optional<T> value = attributeFromText<T>(text);
            if (!value) return false;
            (static_cast<typename Traits::Class&>(self).*Setter)(*value);
            return true;
          }};
}

}  // namespace platform
