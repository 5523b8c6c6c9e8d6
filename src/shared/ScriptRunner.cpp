#include "shared/ScriptRunner.h"

#include "platform/applescript/NSAppleScript.h"
#include "platform/foundation/Print.h"

namespace shared {

void runAppleScript(std::string source) {
  const auto script = platform::NSAppleScript::initWithSource(std::move(source));
  if (!script) return;
  std::optional<platform::Dictionary> errorInfo;
  script->executeAndReturnError(errorInfo);
  if (errorInfo) platform::print("Optional(" + platform::description(*errorInfo) + ")");
}

}  // namespace shared
