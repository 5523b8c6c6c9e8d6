#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include "desktop/harness/XDesk.h"

namespace bench {

using Clock = std::chrono::steady_clock;

/// The bench's own environment becomes that of the desktop, for its clients of the sound server and
/// the bus.
void liveOn(const harness::Desk& desk);

/// A desktop with one monitor, xfwm4, this panel and PulseAudio with a sink "out1"; the bench
/// lives on it.
[[nodiscard]] std::unique_ptr<harness::XDesk> openDesk(harness::Panel panel);

/// Calmdeck's panel on a desktop, used with mouse and keyboard alone. Everything throws
/// std::runtime_error when what it waits for does not come.
class DeskProgram {
 public:
  explicit DeskProgram(harness::XDesk& desk, const harness::Environment& extra = {});

  [[nodiscard]] pid_t pid() const { return process_->pid(); }
  [[nodiscard]] harness::Process& process() { return *process_; }

  /// The panel opens by itself at launch; returns once it has the keyboard.
  void awaitPanel();
  void openPanel();
  /// Opens it if it has closed.
  void ensurePanel();
  /// By the Escape key; the pointer goes where nothing is.
  void closePanel();
  /// Where the panel's upper left corner is.
  [[nodiscard]] harness::Rect panelArea() const;
  /// A click at a point of the panel, as from its upper left corner. Returns when the button was
  /// let go: switches act on that.
  Clock::time_point click(int x, int y);
  void end();

 private:
  void require(bool fact, const std::string& claim);

  harness::XDesk& desk_;
  std::unique_ptr<harness::Process> process_;
};

/// Calmdeck with the speaker as a chosen feature, its mode off and its panel open. No screen reader
/// listens to it: one that did has found the switches in an earlier start.
class ReadyProgram {
 public:
  explicit ReadyProgram(harness::XDesk& desk);

  /// Ends the program and starts it anew with this added to its environment.
  void restart(const harness::Environment& extra);

  [[nodiscard]] DeskProgram& program() { return *program_; }
  /// A click on the master switch of the open panel; when the button was let go.
  Clock::time_point clickMaster() { return program_->click(master_.x, master_.y); }

 private:
  void chooseSpeaker(harness::XDesk& desk);

  harness::XDesk& desk_;
  harness::Rect master_;  // its middle, as from the panel's corner
  std::unique_ptr<DeskProgram> program_;
};

}  // namespace bench
