#pragma once

#include <optional>
#include <string>

#include "platform/foundation/Value.h"

namespace shared {

struct ScriptResult {
  std::optional<std::string> text;            ///< what the script gave
  std::optional<platform::Dictionary> error;  ///< its error information
};

/// Runs an AppleScript and waits for it; a text that makes no script gives nothing. Main thread
/// only.
ScriptResult scriptResult(std::string source);

/// Runs an AppleScript and waits for it. If it fails, its error information goes to standard
/// output, as the platform describes the optional dictionary; a text that makes no script does
/// nothing. Main thread only.
void runAppleScript(std::string source);

}  // namespace shared
