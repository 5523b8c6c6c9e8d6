#pragma once

#include <optional>
#include <string>

namespace shared {

struct ScriptResult {
  std::optional<std::string> text;   ///< what the script gave
  std::optional<std::string> error;  ///< its error information, as the platform describes it
};

/// Runs an AppleScript and waits for it; a text that makes no script gives nothing. Main thread
/// only.
ScriptResult scriptResult(std::string source);

/// Runs an AppleScript and waits for it. If it fails, its error information goes to standard
/// output, as the platform describes the optional dictionary; a text that makes no script does
/// nothing. Main thread only.
void runAppleScript(std::string source);

}  // namespace shared
