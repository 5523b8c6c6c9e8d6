#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/foundation/Value.h"
#include "platform/port/Automation.h"

/// The tokens of a script and its syntax tree, what makes them and what runs it. The tree's depth
/// is bounded by the parser, so walking and dropping it by recursion is safe.
namespace platform::applescript {

// The language's own error numbers. Those of applications come through the port.
inline constexpr int kCannotMake = -1700;
inline constexpr int kNotUnderstood = -1708;
inline constexpr int kNoSuchObject = -1728;
inline constexpr int kNotAuthorized = -1743;
inline constexpr int kStackOverflow = -2706;
inline constexpr int kMisplacedElement = -2740;
inline constexpr int kUnexpectedElement = -2741;
inline constexpr int kVariableNotDefined = -2753;
inline constexpr int kTellsTooDeep = -2760;

/// A run of bytes of the source, from `begin` up to but without `end`.
struct SourceRange {
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// Why a script did not compile or stopped. Inside of this room it is thrown.
struct ScriptFailure {
  int number = 0;
  std::string message;
  /// The smallest part of the source that is to blame.
  SourceRange range;
  /// The application that raised the error; empty where the language itself did.
  std::string application;
};

enum class TokenKind { Word, Number, Text, Symbol, EndOfLine, EndOfScript, Bad };

struct Token {
  TokenKind kind = TokenKind::EndOfScript;
  SourceRange range;
  /// Word, Symbol: itself. Text: its content. Bad: the whole error message, or empty for something
  /// that the language does not know.
  std::string text;
  std::int64_t number = 0;
};

/// The tokens of `source`, any bytes whatever. The last one is EndOfScript; nothing but it follows
/// a Bad one. Blanks leave no token.
[[nodiscard]] std::vector<Token> tokens(std::string_view source);

/// Whether the language keeps `word` for itself, so that it names nothing.
[[nodiscard]] bool isReserved(std::string_view word);

/// How messages call `token`.
[[nodiscard]] std::string described(const Token& token);

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

/// The error information dictionary of `failure`, whose range becomes one of UTF-16 units of
/// `source`.
[[nodiscard]] Dictionary errorInformation(const ScriptFailure& failure, std::string_view source);

/// The value of the last statement that ran, none where it has none; or why the script failed.
using ScriptOutcome = std::variant<std::optional<Value>, ScriptFailure>;

/// Compiles and runs `source`, any bytes whatever. `automation` is what the script can reach; null
/// where it can reach nothing. Always ends: the language has no loops and its nesting is bounded.
[[nodiscard]] ScriptOutcome runScript(std::string_view source, port::Automation* automation);

/// `value as text`; none for what has no text.
[[nodiscard]] std::optional<std::string> textOf(const Value& value);

}  // namespace platform::applescript
