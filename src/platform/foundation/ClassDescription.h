#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>

#include "platform/foundation/AttributeText.h"
#include "platform/foundation/ProgrammingError.h"

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

namespace detail {

template <typename Member>
struct MemberTraits;
template <typename C>
struct MemberTraits<void (C::*)()> {
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

/// A row for a method `void f()`, `void f(NSObject* sender)` (which may be null) or
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
