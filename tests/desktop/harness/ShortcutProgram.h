#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "desktop/harness/XDesk.h"

namespace harness {

/// Calmdeck, whose mode is switched by the shortcut alone: its panel is closed.
class ShortcutProgram {
 public:
  /// Returns when the panel has opened by itself and has been closed; see Desk::writeSettings().
  /// Throws std::runtime_error, with what the program wrote.
  ShortcutProgram(XDesk& desk, const std::vector<std::string>& features,
                  const std::string& further = {})
      : desk_(desk) {
    desk.writeSettings(features, kControlAltP + (further.empty() ? "" : ", " + further));
    process_ = desk.startCalmdeck();
    std::optional<WindowInfo> panel;
    if (desk.until([&] { return (panel = desk.openPopover()).has_value(); })) {
      desk.x().askToClose(panel->id);
      if (desk.until([&] { return !desk.openPopover(); })) return;
    }
    throw std::runtime_error("no panel to close: " + process_->errorOutput());
  }

  [[nodiscard]] Process& process() { return *process_; }
  void press() { desk_.input().key("ctrl+alt+p"); }
  /// Presses and returns when the program has dealt with it, and no other program has anything left
  /// to do either.
  void toggle() {
    press();
    if (!process_->waitForLine(std::string("^") + kPressed) ||
        !desk_.until([this] { return desk_.home().isAtRest(); })) {
      throw std::runtime_error("the shortcut leads to no end: " + process_->errorOutput());
    }
  }
  /// Ends it. What it wrote is complete after that.
  void quit() {
    if (process_->terminate(kPatience) != ProcessEnd{0, 0})
      throw std::runtime_error("the program did not end by itself: " + process_->errorOutput());
  }

  /// What it printed, its own times of the presses left out.
  [[nodiscard]] std::string printed() const {
    std::string text;
    for (const std::string& line : process_->lines(""))
      if (!line.starts_with(kPressed)) text += line + '\n';
    return text;
  }
  /// How many lines of standard error speak of `topic`.
  [[nodiscard]] std::size_t complaints(const std::string& topic) const {
    return process_->lines(topic, Stream::Error).size();
  }

 private:
  static constexpr const char* kPressed = "Pressed at ";

  XDesk& desk_;
  std::unique_ptr<Process> process_;
};

}  // namespace harness
