#pragma once

#include <optional>
#include <string_view>
#include <variant>

#include "platform/applescript/ScriptFailure.h"
#include "platform/foundation/Value.h"

namespace platform::port {
class Automation;
}

namespace platform::applescript {

/// The value of the last statement that ran, none where it has none or is an object of an
/// application; or why the script failed.
using ScriptOutcome = std::variant<std::optional<Value>, ScriptFailure>;

/// Compiles and runs `source`, any bytes whatever. `automation` is what the script can reach; null
/// where it can reach nothing. Always ends: the language has no loops and its nesting is bounded.
[[nodiscard]] ScriptOutcome runScript(std::string_view source, port::Automation* automation);

}  // namespace platform::applescript
