#pragma once

#include <string>
#include <string_view>

#include "platform/applescript/SourceRange.h"
#include "platform/foundation/Value.h"

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
inline constexpr int kCannotSet = -10006;

/// Why a script did not compile or stopped.
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

}  // namespace platform::applescript
