#pragma once

#include <string>

namespace shared {

/// Runs an AppleScript and waits for it. If it fails, its error information goes to standard
/// output, as the platform describes the optional dictionary; a text that makes no script does
/// nothing. Main thread only.
void runAppleScript(std::string source);

}  // namespace shared
