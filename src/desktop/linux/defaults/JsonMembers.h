#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "platform/foundation/Value.h"

namespace linux_desktop {

/// One member of a JSON object: its text as it stands in the file and, where that is of a type
/// that settings have (bool, integer, double, string, array of these), its value. What has no
/// value (an object, null, a number that no type of ours holds) is still carried along as text.
struct JsonMember {
  std::string text;
  std::optional<platform::Value> value;

  bool operator==(const JsonMember&) const = default;
};

using JsonMembers = std::map<std::string, JsonMember, std::less<>>;

/// Where and why a text is no JSON object; line and column count from 1, the column in bytes.
struct JsonError {
  std::size_t line = 1;
  std::size_t column = 1;
  std::string reason;
};

/// Arrays and objects in one another, the outermost object included.
inline constexpr std::size_t kMaximumJsonDepth = 64;

/// Reads a text whose top level is an object. Of members with the same name the last one counts.
///
/// A number with a fraction or an exponent is a double, any other an integer: 1.0 is not 1.
/// Strings are bytes: what is no UTF-8 is taken as it is, and an escaped half surrogate
/// U+DC80 ... U+DCFF stands for the byte 80 ... FF (see jsonText).
[[nodiscard]] std::variant<JsonMembers, JsonError> readJson(std::string_view text);

/// The text of a value, such that readJson gives back an equal value of the same type. Bytes that
/// are no UTF-8 are written as half surrogates, so that the text itself always is UTF-8.
/// Absent for what no setting may be: a range, a dictionary, a double that is not finite, arrays
/// nested deeper than readJson reads.
[[nodiscard]] std::optional<std::string> jsonText(const platform::Value& value);

/// The whole file, a member a line in the order of the names.
[[nodiscard]] std::string writeJson(const JsonMembers& members);

}  // namespace linux_desktop
