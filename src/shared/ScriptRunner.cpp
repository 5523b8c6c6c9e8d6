#include "shared/ScriptRunner.h"

#include "platform/applescript/NSAppleScript.h"
#include "platform/foundation/Process.h"

namespace shared {

ScriptResult scriptResult(std::string source) {
  const auto script = platform::NSAppleScript::initWithSource(std::move(source));
  if (!script) return {};
  std::optional<platform::Dictionary> errorInfo;
  ScriptResult result{script->executeAndReturnError(errorInfo).stringValue(), std::nullopt};
  if (errorInfo) result.error = platform::description(*errorInfo);
  return result;
}

void runAppleScript(std::string source) {
  const auto error = scriptResult(std::move(source)).error;
  if (error) platform::print("Optional(" + *error + ")");
}

}  // namespace shared
