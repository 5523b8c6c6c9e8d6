#pragma once

#include <memory>
#include <utility>

#include "desktop/linux/gsettings/GuardedSettings.h"
#include "desktop/linux/notifications/DoNotDisturbAdapter.h"

namespace linux_desktop {

/// MATE's notification daemon: a key of the desktop's settings, which outlasts us and the daemon.
/// That one ends when it has had nothing to show for half a minute, and is started by the next
/// notification.
class MateDoNotDisturb final : public DoNotDisturbAdapter {
 public:
  /// Null where the key cannot be had; see GuardedSettings.
  [[nodiscard]] static std::unique_ptr<MateDoNotDisturb> open();
  /// Waits, half a second at most, for a change that may still be on its way.
  ~MateDoNotDisturb() override;

  [[nodiscard]] std::optional<bool> isOn() override;
  [[nodiscard]] bool set(bool on) override;
  [[nodiscard]] bool outlivesDaemon() const override { return true; }

 private:
  explicit MateDoNotDisturb(std::unique_ptr<GuardedSettings> settings)
      : settings_(std::move(settings)) {}

  std::unique_ptr<GuardedSettings> settings_;
  bool written_ = false;
};

}  // namespace linux_desktop
