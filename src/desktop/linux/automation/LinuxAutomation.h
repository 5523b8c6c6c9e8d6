#pragma once

#include <memory>

#include "desktop/linux/audio/VolumeControl.h"
#include "desktop/linux/automation/ScriptElement.h"
#include "desktop/linux/notifications/DaemonNotifier.h"
#include "desktop/linux/notifications/DoNotDisturbAdapter.h"
#include "platform/port/Automation.h"

namespace linux_desktop {

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
