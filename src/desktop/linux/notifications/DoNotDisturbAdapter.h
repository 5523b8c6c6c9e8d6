#pragma once

#include <optional>

namespace linux_desktop {

/// Do Not Disturb of one notification daemon. Made when the daemon has said who it is, dropped when
/// it goes, unless the switch is still there then. What was switched on stays on when an adapter is
/// dropped, unless the adapter's own header says otherwise. Main thread only.
class DoNotDisturbAdapter {
 public:
  DoNotDisturbAdapter() = default;
  virtual ~DoNotDisturbAdapter() = default;
  DoNotDisturbAdapter(const DoNotDisturbAdapter&) = delete;
  DoNotDisturbAdapter& operator=(const DoNotDisturbAdapter&) = delete;

  /// The daemon's state as far as it is known without asking: what was set last until the daemon
  /// has answered to that. None before the first answer.
  [[nodiscard]] virtual std::optional<bool> isOn() = 0;
  /// Returns at once. False when it is refused already, after one line; when the daemon refuses it
  /// later that is one line, too, and the state is asked for again.
  [[nodiscard]] virtual bool set(bool on) = 0;
  /// Whether the switch can be turned while the daemon does not run, which finds it so when it
  /// starts: some end whenever they have nothing to show.
  [[nodiscard]] virtual bool outlivesDaemon() const { return false; }
  /// Waits for the first answer, as long as the daemon's identity allows.
  virtual void settle() {}
};

}  // namespace linux_desktop
