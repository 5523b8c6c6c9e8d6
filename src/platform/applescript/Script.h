#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/applescript/RunScript.h"
#include "platform/foundation/Value.h"
#include "platform/port/Automation.h"

/// The syntax tree of a script, what makes it and what runs it. Its depth is bounded by the parser,
/// so walking and dropping it by recursion is safe.
namespace platform::applescript {

struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;

struct Literal {
  Value value = false;
};

/// `get volume settings`.
struct VolumeSettings {};

/// A variable, a property or an element: `value of its window`, `checkbox "Do Not Disturb"`. Which
/// one is known only where it is looked up.
struct Name {
  /// As the desktop's vocabulary has them: "menu bar item".
  std::string words;
  port::ElementSpecifier which;
  /// `its` stands before it, so it is no variable.
  bool its = false;
  /// What follows `of`; null for the object that is being told.
  ExpressionPtr container;
};

struct AsText {
  ExpressionPtr operand;
};

/// `left is not equal to right`.
struct Difference {
  ExpressionPtr left;
  ExpressionPtr right;
};

struct Expression {
  SourceRange range;
  std::variant<Literal, VolumeSettings, Name, AsText, Difference> node;
};

struct Statement;
using Block = std::vector<Statement>;

struct Tell {
  ExpressionPtr target;
  Block body;
};

struct If {
  ExpressionPtr condition;
  Block body;
};

struct Set {
  std::string variable;
  ExpressionPtr value;
};

enum class Verb { Click, DisplayNotification, KeyCode, SetInputVolume };

struct Command {
  Verb verb = Verb::Click;
  ExpressionPtr parameter;
};

struct Statement {
  SourceRange range;
  std::variant<Tell, If, Set, Command> node;
};

/// The statements of `source`, any bytes whatever. Throws the first ScriptFailure that a reader
/// meets.
[[nodiscard]] Block parse(std::string_view source);

/// Runs the statements in order and gives the value of the last one that ran; throws where one
/// fails.
[[nodiscard]] std::optional<Value> evaluate(const Block& script, port::Automation* automation);

}  // namespace platform::applescript
