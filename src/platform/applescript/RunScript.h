#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "platform/foundation/Value.h"

namespace platform::port {
class Automation;
}

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
