#pragma once

#include <string_view>
#include <variant>

#include "platform/applescript/Ast.h"
#include "platform/applescript/ScriptFailure.h"

namespace platform::applescript {

/// The statements of `source`, any bytes whatever, or the first error that a reader meets.
[[nodiscard]] std::variant<Block, ScriptFailure> parse(std::string_view source);

}  // namespace platform::applescript
