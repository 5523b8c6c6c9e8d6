#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/applescript/SourceRange.h"
#include "platform/foundation/Value.h"

/// The syntax tree of a script. Its depth is bounded by the parser, so walking and dropping it by
/// recursion is safe. Words of names are in lower case; texts are as written.
namespace platform::applescript {

struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;

struct Literal {
  std::shared_ptr<const Value> value;
};

struct MissingValue {};

/// `it`: the object that is being told.
struct It {};

/// `get volume settings`.
struct VolumeSettings {};

/// `application "System Events"`.
struct Application {
  ExpressionPtr name;
};

/// Words without a specifier: a variable, a property, or an element named by its class alone.
/// Which one is known only when it is looked up.
struct Name {
  std::vector<std::string> words;
  /// `its` stands before it, so it is no variable.
  bool its = false;
  /// What follows `of`; null for the object that is being told.
  ExpressionPtr container;
};

/// A class with a name or an index: `menu bar 1`, `checkbox "Do Not Disturb"`.
struct Element {
  std::string className;
  ExpressionPtr which;
  /// As in Name.
  ExpressionPtr container;
};

enum class CoercedType { Text, Integer, Boolean };

struct Coercion {
  ExpressionPtr operand;
  CoercedType type = CoercedType::Text;
};

struct Comparison {
  ExpressionPtr left;
  ExpressionPtr right;
  bool negated = false;
};

struct Expression {
  SourceRange range;
  std::variant<Literal, MissingValue, It, VolumeSettings, Application, Name, Element, Coercion,
               Comparison>
      node;
};

struct Statement;
using Block = std::vector<Statement>;

struct Tell {
  ExpressionPtr target;
  Block body;
};

struct If {
  struct Branch {
    ExpressionPtr condition;
    Block body;
  };
  std::vector<Branch> branches;
  Block otherwise;
};

/// `target` is a Name, an Element or an Application.
struct Set {
  ExpressionPtr target;
  ExpressionPtr value;
};

struct SetInputVolume {
  ExpressionPtr level;
};

struct Click {
  /// Null for the object that is being told.
  ExpressionPtr target;
};

struct KeyCode {
  ExpressionPtr code;
};

struct DisplayNotification {
  ExpressionPtr text;
};

/// An expression alone on its line; its value is the result so far.
struct Evaluation {
  ExpressionPtr expression;
};

struct Statement {
  SourceRange range;
  std::variant<Tell, If, Set, SetInputVolume, Click, KeyCode, DisplayNotification, Evaluation> node;
};

/// `words` as the desktop's vocabulary has them: "menu bar item".
[[nodiscard]] inline std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

}  // namespace platform::applescript
