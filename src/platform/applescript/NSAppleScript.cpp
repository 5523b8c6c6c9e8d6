#include "platform/applescript/NSAppleScript.h"

#include "platform/Runtime.h"
#include "platform/applescript/RunScript.h"
#include "platform/foundation/Utf8.h"

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
    return {};
  }
  auto value = std::get<std::optional<Value>>(std::move(outcome));
  return value ? NSAppleEventDescriptor(std::move(*value)) : NSAppleEventDescriptor();
}

}  // namespace platform
