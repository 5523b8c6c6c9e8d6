#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/applescript/Ast.h"
#include "platform/applescript/Item.h"
#include "platform/applescript/ScriptFailure.h"
#include "platform/port/Automation.h"

namespace platform::applescript {

/// What a running script has at hand.
struct ScriptState {
  /// Null where scripts can reach nothing.
  port::Automation* automation = nullptr;
  /// The text that the tree was made from.
  std::string_view source;
  std::map<std::string, Item, std::less<>> variables;
  /// What the innermost `tell` addresses; none outside.
  std::optional<Item> target;
  /// Set once; the run is over then.
  std::optional<ScriptFailure> failure;

  /// The name of the application that `target` belongs to; empty without one.
  [[nodiscard]] std::string application() const;
  /// Both record the failure and return none.
  std::nullopt_t fail(ScriptFailure reason, SourceRange range);
  std::nullopt_t fail(int number, std::string message, SourceRange range);
  /// False, with the failure recorded, where scripts can reach nothing.
  bool reaches(const std::string& applicationName, SourceRange range);
};

/// Looks up and computes what expressions mean. Each function returns none after a failure, which
/// the state then holds.
class ExpressionEvaluator {
 public:
  explicit ExpressionEvaluator(ScriptState& state) : state_(state) {}

  /// The expression where a value is wanted: a name is a variable or a property first.
  std::optional<Item> value(const Expression& expression);
  /// The expression where an object is wanted: a name is a variable or an element first.
  std::optional<Item> object(const Expression& expression);
  /// What `container` stands for; null means the object that is being told.
  std::optional<Item> container(const ExpressionPtr& container, SourceRange range);
  /// `item` as a value of `type`; `range` is what to blame if it has none.
  std::optional<Item> coerced(const Item& item, CoercedType type, SourceRange range);

 private:
  enum class Wanted { Value, Object };
  using Found = std::variant<Item, ScriptFailure>;

  std::optional<Item> evaluate(const Expression& expression, Wanted wanted);
  std::optional<Item> evaluate(const Literal& literal, SourceRange range, Wanted wanted);
  std::optional<Item> evaluate(const MissingValue& missing, SourceRange range, Wanted wanted);
  std::optional<Item> evaluate(const It& it, SourceRange range, Wanted wanted);
  std::optional<Item> evaluate(const VolumeSettings& settings, SourceRange range, Wanted wanted);
  std::optional<Item> evaluate(const Application& application, SourceRange range, Wanted wanted);
  std::optional<Item> evaluate(const Name& name, SourceRange range, Wanted wanted);
  std::optional<Item> evaluate(const Element& element, SourceRange range, Wanted wanted);
  std::optional<Item> evaluate(const Coercion& coercion, SourceRange range, Wanted wanted);
  std::optional<Item> evaluate(const Comparison& comparison, SourceRange range, Wanted wanted);

  std::optional<Item> applicationNamed(const Item& name, SourceRange range);
  /// The variable of `application someName`; null where `name` is something else.
  [[nodiscard]] const Item* applicationVariable(const Name& name) const;
  std::optional<port::ElementSpecifier> specifier(const Expression& which);
  [[nodiscard]] Found lookUp(const Item& container, const std::vector<std::string>& words,
                             Wanted wanted) const;
  [[nodiscard]] const Item* variable(std::string_view word) const;
  std::nullopt_t undefined(SourceRange range);
  std::optional<Item> settled(Found found, SourceRange range);

  ScriptState& state_;
};

}  // namespace platform::applescript
