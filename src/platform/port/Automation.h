#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "platform/foundation/Value.h"

namespace platform::port {

/// Why an operation of a scriptable object failed, with the number that scripts see.
struct ScriptError {
  /// -1708 the object does not understand the message, -1719 no element at that index, -1728 no
  /// such object (name, property or application), -1743 the user or the desktop does not allow it;
  /// a service's own failure is -10000.
  int number = -10000;
  /// Shown to whoever reads the error; a full sentence without the "… got an error:" prefix.
  std::string message;
};

template <typename T>
using ScriptResult = std::variant<T, ScriptError>;

/// Which element of a class: by name, by 1-based index, or (monostate) the one that a bare class
/// name means, the first.
using ElementSpecifier = std::variant<std::monostate, std::string, std::int64_t>;

/// One object that a script can reach: an application, a process, a menu bar, a checkbox.
/// Objects are handles: the thing behind one may be gone when it is used, which is error -1728.
/// Main thread only; no operation takes longer than half a second.
class ScriptObject {
 public:
  virtual ~ScriptObject() = default;

  /// The element of class `className` ("menu bar item", in the singular, lower case).
  [[nodiscard]] virtual ScriptResult<std::shared_ptr<ScriptObject>> element(
      std::string_view className, const ElementSpecifier& which) = 0;
  [[nodiscard]] virtual ScriptResult<Value> property(std::string_view name) = 0;
  [[nodiscard]] virtual std::optional<ScriptError> click() = 0;
};

/// What scripts can do on this desktop. Absent where scripts cannot reach anything; every command
/// and every `tell application` then fails with -1743.
class Automation {
 public:
  virtual ~Automation() = default;

  /// The application that a script tells, for instance "System Events".
  [[nodiscard]] virtual ScriptResult<std::shared_ptr<ScriptObject>> application(
      std::string_view name) = 0;
  /// A press and release of the key with this virtual key code.
  [[nodiscard]] virtual std::optional<ScriptError> keyCode(std::int64_t code) = 0;
  /// The record of `get volume settings`: "output volume", "input volume", "alert volume" as
  /// integers from 0 to 100 and "output muted" as a boolean; an entry that this desktop cannot tell
  /// is absent, which a script reads as `missing value`.
  [[nodiscard]] virtual ScriptResult<Dictionary> volumeSettings() = 0;
  /// `level` is from 0 to 100; the interpreter clamps what a script says.
  [[nodiscard]] virtual std::optional<ScriptError> setInputVolume(int level) = 0;
  [[nodiscard]] virtual std::optional<ScriptError> displayNotification(std::string_view text) = 0;
};

}  // namespace platform::port
