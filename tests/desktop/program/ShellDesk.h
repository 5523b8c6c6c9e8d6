#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "desktop/harness/ShortcutProgram.h"

/// A shell that paints the background itself, beside programs with icons, and that shows
/// notifications.
struct Shell {
  const char* name;
  const char* currentDesktop;
  /// What the shell owns on the bus when its windows can come.
  const char* busName;
  std::vector<std::vector<std::string>> programs;
  /// As gsettings takes them: schema, key, value; "{home}" is the home folder.
  std::vector<std::vector<std::string>> settings;
  /// What the mode may change there, as dconf names it.
  const char* backgrounds;
  bool hasIcons = true;
  /// Whether what shows its notifications has a Do Not Disturb.
  bool canBeQuiet = true;
};

extern const Shell kCinnamon;
extern const Shell kBudgie;
extern const Shell kFlashback;

/// What a test runner lists the case under.
void PrintTo(const Shell& row, std::ostream* stream);

/// One of these with two monitors, icons and a window on each, and the program, told to do all that
/// it can. Judged by what is on the screen.
class ShellDesk {
 public:
  explicit ShellDesk(const Shell& shell);

  [[nodiscard]] harness::XDesk& desk() { return desk_; }
  /// Before that: an override of a schema of the machine's, as packages bring it.
  void install(const std::string& schema, const std::filesystem::path& override);
  /// Starts the shell, and returns when it shows the wallpaper and the icons on it.
  [[nodiscard]] testing::AssertionResult startShell();
  void launch();
  void press() { program_->press(); }

  /// Nothing but the chosen picture is to be seen, on each monitor, beside the panel.
  [[nodiscard]] testing::AssertionResult showsThePictureOnly();
  /// The same, and the sound is off.
  [[nodiscard]] testing::AssertionResult inTheMode();
  /// To the pixel, beside the panel.
  [[nodiscard]] testing::AssertionResult looksAsIn(const std::vector<harness::Image>& before);
  /// If only for a moment.
  [[nodiscard]] testing::AssertionResult changesFrom(const std::vector<harness::Image>& before);
  /// Each monitor at rest, without the panel, whose clock goes on.
  [[nodiscard]] std::vector<harness::Image> photograph();
  /// Has a notification shown, or kept back.
  [[nodiscard]] testing::AssertionResult notify();
  [[nodiscard]] std::string backgrounds() const;

  /// Ends the program with the icons, as a crash would.
  void killIcons();
  [[nodiscard]] std::size_t iconWindows() const;

 private:
  [[nodiscard]] testing::AssertionResult waitFor(const std::function<bool()>& fact,
                                                 const std::string& claim);
  [[nodiscard]] std::vector<harness::Rect> monitors();
  void set(std::vector<std::string> setting);
  void keepOthersFromStarting();

  const Shell& shell_;
  harness::XDesk desk_;
  std::vector<std::unique_ptr<harness::Process>> programs_;
  std::optional<harness::ShortcutProgram> program_;
};
