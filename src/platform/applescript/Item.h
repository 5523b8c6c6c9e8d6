#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "platform/foundation/Value.h"
#include "platform/port/Automation.h"

namespace platform::applescript {

struct Missing {};

/// An object of an application.
struct Reference {
  std::shared_ptr<port::ScriptObject> object;
  /// The application's name as the script wrote it; never null.
  std::shared_ptr<const std::string> application;
  /// What messages call the object: its own part of the path, cut if long.
  std::string text;
};

/// What an expression gives. Values are shared, so that a script that hands a long text on and on
/// keeps one.
using Item = std::variant<Missing, std::shared_ptr<const Value>, Reference>;

[[nodiscard]] Item itemOf(Value value);
/// The value in `item`; null for the others.
[[nodiscard]] const Value* valueIn(const Item& item);

// `as text` and so on; none where the language cannot make one out of the other.
[[nodiscard]] std::optional<std::string> textOf(const Value& value);
[[nodiscard]] std::optional<std::string> textOf(const Item& item);
[[nodiscard]] std::optional<std::int64_t> integerOf(const Item& item);
[[nodiscard]] std::optional<bool> booleanOf(const Item& item);

/// Texts are equal but for the case of the letters A to Z, an integer and a real by their amount;
/// otherwise only what is of the same kind is equal.
[[nodiscard]] bool areEqual(const Item& left, const Item& right);

/// The item as a script would write it, cut if long; for messages.
[[nodiscard]] std::string sourceForm(const Item& item);
[[nodiscard]] std::string sourceForm(const port::ElementSpecifier& which);

}  // namespace platform::applescript
