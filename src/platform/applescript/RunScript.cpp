#include "platform/applescript/RunScript.h"

#include "platform/applescript/NSAppleScript.h"
#include "platform/applescript/Script.h"
#include "platform/foundation/Utf8.h"

namespace platform::applescript {
namespace {

NSRange unitRange(SourceRange range, std::string_view source) {
  const std::size_t location = utf16FromUtf8(source.substr(0, range.begin)).size();
  const std::size_t end = utf16FromUtf8(source.substr(0, range.end)).size();
  return {location, end - location};
}

// A refusal comes from the system, not from the application that the script wanted to reach.
bool isRaisedByApplication(const ScriptFailure& failure) {
  return !failure.application.empty() && failure.number != kNotAuthorized;
}

}  // namespace

Dictionary errorInformation(const ScriptFailure& failure, std::string_view source) {
  const std::string prefix =
      isRaisedByApplication(failure) ? failure.application + " got an error: " : std::string();
  Dictionary information;
  const auto add = [&](std::string_view key, Value value) {
    information.emplace(key, std::move(value));
  };
  add(NSAppleScriptErrorMessage, prefix + failure.message);
  add(NSAppleScriptErrorBriefMessage, failure.message);
  add(NSAppleScriptErrorNumber, failure.number);
  add(NSAppleScriptErrorRange, unitRange(failure.range, source));
  if (!failure.application.empty()) add(NSAppleScriptErrorAppName, failure.application);
  return information;
}

ScriptOutcome runScript(std::string_view source, port::Automation* automation) {
  try {
    return evaluate(parse(source), automation);
  } catch (const ScriptFailure& failure) {
    return failure;
  }
}

std::optional<std::string> textOf(const Value& value) {
  if (const auto truth = value.as<bool>()) return *truth ? "true" : "false";
  if (const auto number = value.as<std::int64_t>()) return std::to_string(*number);
  return value.as<std::string>();
}

}  // namespace platform::applescript
