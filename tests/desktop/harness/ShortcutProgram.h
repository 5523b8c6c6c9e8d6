#pragma once

#include <memory>
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
                  const std::string& further = {});

  [[nodiscard]] Process& process() { return *process_; }
  void press() { desk_.input().key("ctrl+alt+p"); }
  /// Presses and returns when the program has dealt with it, and no other program has anything left
  /// to do either.
  void toggle();
  /// Ends it. What it wrote is complete after that.
  void quit();

  /// What it printed, its own times of the presses left out.
  [[nodiscard]] std::string printed() const;
  /// How many lines of standard error speak of `topic`.
  [[nodiscard]] std::size_t complaints(const std::string& topic) const {
    return process_->lines(topic, Stream::Error).size();
  }

 private:
  XDesk& desk_;
  std::unique_ptr<Process> process_;
};

}  // namespace harness
