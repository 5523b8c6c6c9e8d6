#pragma once

namespace linux_desktop {

/// The switch that keeps this desktop from showing notifications. Main thread only; one question
/// waits half a second at most, and only while an answer to an earlier one is owed.
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

}  // namespace linux_desktop
