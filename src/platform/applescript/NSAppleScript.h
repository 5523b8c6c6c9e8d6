#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/Value.h"

namespace platform {

// Keys of the error information dictionary. The number is an integer, the range an NSRange counted
// in UTF-16 units of the source, the rest are strings.
inline constexpr std::string_view NSAppleScriptErrorMessage = "NSAppleScriptErrorMessage";
inline constexpr std::string_view NSAppleScriptErrorNumber = "NSAppleScriptErrorNumber";
inline constexpr std::string_view NSAppleScriptErrorAppName = "NSAppleScriptErrorAppName";
inline constexpr std::string_view NSAppleScriptErrorBriefMessage = "NSAppleScriptErrorBriefMessage";
inline constexpr std::string_view NSAppleScriptErrorRange = "NSAppleScriptErrorRange";

/// What a script's last statement gave.
class NSAppleEventDescriptor {
 public:
  explicit NSAppleEventDescriptor(std::optional<Value> value = std::nullopt)
      : value_(std::move(value)) {}

  /// The value as text, if it has one: strings as they are, integers in decimal, booleans as
  /// "true" and "false"; none for `missing value`, records and object references.
  [[nodiscard]] std::optional<std::string> stringValue() const;

 private:
  std::optional<Value> value_;
};

/// A script of a small, always ending part of the AppleScript language; docs/applescript.md has the
/// grammar. What a script can reach is what the desktop's Automation offers.
class NSAppleScript {
 public:
  /// Never compiles: a bad text shows when it is executed. None only for a text that is not UTF-8
  /// or longer than 64 KiB.
  [[nodiscard]] static std::unique_ptr<NSAppleScript> initWithSource(std::string source);

  /// Runs the script on the main thread and waits for it. On failure returns an empty descriptor
  /// and sets `errorInfo`; on success leaves `errorInfo` alone.
  NSAppleEventDescriptor executeAndReturnError(std::optional<Dictionary>& errorInfo) const;

 private:
  explicit NSAppleScript(std::string source) : source_(std::move(source)) {}

  std::string source_;
};

}  // namespace platform
