#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/linux/audio/VolumeControl.h"
#include "desktop/linux/notifications/DaemonNotifier.h"
#include "desktop/linux/notifications/DoNotDisturbAdapter.h"
#include "platform/port/Automation.h"

namespace linux_desktop {

/// One node of the tree that scripts can reach: what is in it, and what it does when it is used.
class ScriptElement final : public platform::port::ScriptObject {
 public:
  template <typename T>
  using Result = platform::port::ScriptResult<T>;
  using Error = platform::port::ScriptError;

  /// `description` stands for it in errors, as a script would write it.
  explicit ScriptElement(std::string description) : description_(std::move(description)) {}

  // --- Making the tree ---
  /// A new element, the last one of its class. It is there as long as `exists` says so, if set.
  ScriptElement& add(std::string className, std::string name, std::function<bool()> exists = {});
  /// Its property "value", to be read only.
  std::function<Result<platform::Value>()> value;
  std::function<std::optional<Error>()> onClick;

  // --- port::ScriptObject ---
  [[nodiscard]] Result<std::shared_ptr<ScriptObject>> element(
      std::string_view className, const platform::port::ElementSpecifier& which) override;
  [[nodiscard]] Result<platform::Value> property(std::string_view name) override;
  [[nodiscard]] std::optional<Error> click() override;

 private:
  struct Child {
    std::string className;
    std::string name;
    std::function<bool()> exists;
    std::shared_ptr<ScriptElement> object;
  };

  std::string description_;
  std::vector<Child> children_;
};

/// What scripts can do on Linux: under "System Events", the Focus menu of the process
/// "ControlCenter" with the checkbox "Do Not Disturb", which is that of the desktop. The menu is on
/// no screen; it only is open or closed. A menu whose checkbox is missing has nothing to switch.
/// Beside it, the volume of the microphone, and notifications.
class LinuxAutomation final : public platform::port::Automation {
 public:
  using Error = platform::port::ScriptError;
  template <typename T>
  using Result = platform::port::ScriptResult<T>;

  /// All must outlive this.
  LinuxAutomation(DoNotDisturbSwitch& doNotDisturb, VolumeControl& volume, Notifier& notifier);
  LinuxAutomation(const LinuxAutomation&) = delete;
  LinuxAutomation& operator=(const LinuxAutomation&) = delete;

  [[nodiscard]] Result<std::shared_ptr<platform::port::ScriptObject>> application(
      std::string_view name) override;
  /// Only Escape, which closes the menu.
  [[nodiscard]] std::optional<Error> keyCode(std::int64_t code) override;
  /// Only the microphone's.
  [[nodiscard]] Result<platform::Dictionary> volumeSettings() override;
  [[nodiscard]] std::optional<Error> setInputVolume(int level) override;
  [[nodiscard]] std::optional<Error> displayNotification(std::string_view text) override;

 private:
  void addFocusMenu(ScriptElement& controlCenter);
  void addDoNotDisturb(ScriptElement& focusWindow);

  DoNotDisturbSwitch& doNotDisturb_;
  VolumeControl& volume_;
  Notifier& notifier_;
  std::shared_ptr<ScriptElement> systemEvents_;
  bool isFocusMenuOpen_ = false;
};

}  // namespace linux_desktop
