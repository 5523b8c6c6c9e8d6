#include "shared/ScriptRunner.h"

#include "platform/applescript/NSAppleScript.h"
#include "platform/foundation/Process.h"

namespace shared {

ScriptResult scriptResult(std::string source) {
  const auto script = platform::NSAppleScript::initWithSource(std::move(source));
  if (!script) return {};
  ScriptResult result;
  result.text = script->executeAndReturnError(result.error).stringValue();
  return result;
}

void runAppleScript(std::string source) {
  const auto error = scriptResult(std::move(source)).error;
  if (error) platform::print(platform::description(error));
}

}  // namespace shared
