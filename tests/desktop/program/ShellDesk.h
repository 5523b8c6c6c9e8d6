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

  /// Before that: an override of a schema of the machine's, as packages bring it.
  void install(const std::string& schema, const std::filesystem::path& override);
  /// Starts the shell, and the program once it shows the wallpaper and the icons on it.
  [[nodiscard]] bool start();
  void press() { program_->press(); }

  /// They start, paint and fade late where nothing helps them to draw.
  [[nodiscard]] bool until(const std::function<bool()>& fact) const {
    return desk.until(fact, 4 * harness::kPatience);
  }
  /// Waits until nothing but the chosen picture is to be seen, on each monitor, beside the panel,
  /// and the sound is off.
  [[nodiscard]] bool inTheMode();
  /// Now.
  [[nodiscard]] bool showsThePictureOnly() const;
  /// What each monitor shows, without the panel, whose clock goes on.
  [[nodiscard]] std::vector<harness::Image> seen() const;
  /// The same at rest, with the pointer out of the way.
  [[nodiscard]] std::vector<harness::Image> photograph();
  [[nodiscard]] std::string backgrounds() const;

  harness::XDesk desk;

 private:
  [[nodiscard]] std::vector<harness::Image> partsOf(const harness::Image& whole) const;
  void set(std::vector<std::string> setting);
  void keepOthersFromStarting();
  void startSystemBus();

  const Shell& shell_;
  std::vector<std::unique_ptr<harness::Process>> programs_;
  std::optional<harness::ShortcutProgram> program_;
};
