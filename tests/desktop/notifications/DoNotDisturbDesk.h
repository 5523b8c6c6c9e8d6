#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/harness/XDesk.h"

/// A desktop with a notification daemon and the probe, which runs the panel's own script.
class DoNotDisturbDesk {
 public:
  explicit DoNotDisturbDesk(const harness::DeskOptions& options) : desk_(options) {}

  [[nodiscard]] harness::XDesk& desk() { return desk_; }

  /// Returns once the probe listens.
  void startProbe();
  [[nodiscard]] harness::Process& probe() { return *probe_; }
  /// Runs the script and returns when it has ended. False when the probe has not come back after
  /// ten seconds, twenty times what it may wait.
  [[nodiscard]] bool turn(const std::string& onOrOff);
  /// The same with a script that only reads the state, for which it waits until the probe knows the
  /// daemon and has told it all that it is to be told.
  [[nodiscard]] bool look() { return turn("look"); }
  /// Waits until one more script has ended with the error of this number.
  [[nodiscard]] bool scriptFailed(int number);
  /// Ends the probe. What it has said is complete after that.
  void quitProbe();
  /// The errors that scripts have ended with, in full.
  [[nodiscard]] std::string scriptErrors() const { return probe_->output(); }
  /// How many lines of standard error speak of `topic`.
  [[nodiscard]] int complaints(const std::string& topic = "calmdeck.notifications:") const;

  /// The daemon's state, as its desktop's own tools tell and change it; none when they cannot.
  [[nodiscard]] std::optional<bool> isOn(harness::NotificationDaemon kind) const;
  [[nodiscard]] bool becomes(harness::NotificationDaemon kind, bool on) const;
  void switchByHand(harness::NotificationDaemon kind, bool on) const;

 private:
  harness::XDesk desk_;
  std::unique_ptr<harness::Process> probe_;
};
