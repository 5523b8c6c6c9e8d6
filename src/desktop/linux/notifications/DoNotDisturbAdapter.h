#pragma once

#include <optional>

namespace linux_desktop {

/// The switch that keeps this desktop from showing notifications. Main thread only; one question
/// waits half a second at most, and a daemon that let that pass is not waited for again until it
/// answers.
class DoNotDisturbSwitch {
 public:
  virtual ~DoNotDisturbSwitch() = default;

  /// False where nothing shows notifications, or what does has no such switch; one line on standard
  /// error says which, once for each program that shows them.
  [[nodiscard]] virtual bool exists() = 0;
  /// The state in force; what was asked for last while that cannot be known. Where each program
  /// asks for quiet of its own, whether we do.
  [[nodiscard]] virtual bool isOn() = 0;
  /// Asks for a state, which may come into force a little later, or when a program appears that
  /// shows notifications. False when it was refused at once; one line says why.
  [[nodiscard]] virtual bool set(bool on) = 0;
};

/// Do Not Disturb of one notification daemon. Made when the daemon has said who it is, dropped when
/// it goes, unless the switch is still there then. What was switched on stays on when an adapter is
/// dropped, unless the adapter's own header says otherwise. Main thread only.
class DoNotDisturbAdapter {
 public:
  virtual ~DoNotDisturbAdapter() = default;

  /// The daemon's state as far as it is known without asking: what was set last until the daemon
  /// has answered to that. None before the first answer. A daemon that does not tell of changes is
  /// asked.
  [[nodiscard]] virtual std::optional<bool> isOn() = 0;
  /// Returns at once, or when a daemon that has to be asked first has answered. False when it is
  /// refused already, after one line; when the daemon refuses it
  /// later that is one line, too, and the state is asked for again.
  [[nodiscard]] virtual bool set(bool on) = 0;
  /// Whether the switch can be turned while the daemon does not run, which finds it so when it
  /// starts: some end whenever they have nothing to show.
  [[nodiscard]] virtual bool outlivesDaemon() const { return false; }
  /// Waits for the first answer, as long as the daemon's identity allows.
  virtual void settle() {}
};

}  // namespace linux_desktop
