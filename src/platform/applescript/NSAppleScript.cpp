#include "platform/applescript/NSAppleScript.h"

#include "platform/Runtime.h"
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

}  // namespace platform::applescript

namespace platform {
namespace {

constexpr std::size_t kLongestSource = std::size_t{64} * 1024;

}  // namespace

std::optional<std::string> NSAppleEventDescriptor::stringValue() const {
  return value_ ? applescript::textOf(*value_) : std::nullopt;
}

std::unique_ptr<NSAppleScript> NSAppleScript::initWithSource(std::string source) {
  if (source.size() > kLongestSource || !isUtf8(source)) return nullptr;
  return std::unique_ptr<NSAppleScript>(new NSAppleScript(std::move(source)));
}

NSAppleEventDescriptor NSAppleScript::executeAndReturnError(
    std::optional<Dictionary>& errorInfo) const {
  applescript::ScriptOutcome outcome =
      applescript::runScript(source_, Runtime::current().desktop().automation);
  if (const auto* failure = std::get_if<applescript::ScriptFailure>(&outcome)) {
    errorInfo = applescript::errorInformation(*failure, source_);
    return NSAppleEventDescriptor();
  }
  return NSAppleEventDescriptor(std::get<std::optional<Value>>(std::move(outcome)));
}

}  // namespace platform
