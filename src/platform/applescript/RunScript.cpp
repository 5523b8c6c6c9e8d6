#include "platform/applescript/RunScript.h"

#include "platform/applescript/Evaluator.h"
#include "platform/applescript/Parser.h"

namespace platform::applescript {

ScriptOutcome runScript(std::string_view source, port::Automation* automation) {
  const std::variant<Block, ScriptFailure> script = parse(source);
  if (const auto* failure = std::get_if<ScriptFailure>(&script)) return *failure;
  return Evaluator(source, automation).run(std::get<Block>(script));
}

}  // namespace platform::applescript
