#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "desktop/harness/Process.h"

namespace harness {

/// The whole of a file; empty when it cannot be read.
[[nodiscard]] std::string textOf(const std::filesystem::path& file);
/// `text` with each `{name}` replaced.
[[nodiscard]] std::string filled(std::string text, const Environment& values);

/// The private folders of one desktop: home, configuration, runtime, all in one temporary folder.
/// The destructor kills every process that was started with these folders, also those that the
/// session bus or a daemon started, and removes the folder.
class PrivateHome {
 public:
  PrivateHome();
  ~PrivateHome();
  PrivateHome(const PrivateHome&) = delete;
  PrivateHome& operator=(const PrivateHome&) = delete;

  [[nodiscard]] std::filesystem::path home() const { return folder_ / "home"; }
  [[nodiscard]] std::filesystem::path config() const { return home() / ".config"; }
  [[nodiscard]] std::filesystem::path runtime() const { return folder_ / "run"; }

  /// What programs of this desktop inherit: the folders, the search path, the sanitizers' options,
  /// and nothing else of the test's own surroundings.
  [[nodiscard]] Environment environment() const;

  /// Those that live with these folders.
  [[nodiscard]] std::vector<pid_t> processes() const;
  /// Whether every program with these folders waits for something at this moment, so that none will
  /// do anything before somebody or a timer wakes it. A stopped one counts as waiting. The X server
  /// is not looked at: it works for whoever looks at the screen.
  [[nodiscard]] bool isAtRest() const;

  /// Writes a configuration file, `name` relative to config(), making its folders.
  void writeConfig(const std::filesystem::path& name, const std::string& text) const;

 private:
  std::filesystem::path folder_;
};

}  // namespace harness
