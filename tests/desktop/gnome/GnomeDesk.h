#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "desktop/harness/Desk.h"
#include "desktop/harness/Screen.h"

namespace gnome_test {

/// Extensions of the shell: ours, and the one that most have for icons on the desktop.
inline constexpr const char* kOurExtension = "shell@calmdeck.org";
inline constexpr const char* kIconsExtension = "ding@rastersoft.com";
/// Ours on the bus.
inline constexpr const char* kOurShell = "org.calmdeck.Shell";

/// What a private GNOME desktop consists of beside the shell.
struct GnomeOptions {
  /// Side by side, each of kMonitorWidth by kMonitorHeight.
  int monitors = 2;
  bool icons = false;
  /// The shell finds our extension at its start.
  bool extension = true;
};

/// A private GNOME desktop for one test: GNOME Shell on monitors that there are not, session and
/// system bus, home and runtime folder. As harness::WaylandDesk it returns when all is ready,
/// throws naming what is not, and leaves nothing.
class GnomeDesk : public harness::Desk {
 public:
  static constexpr int kMonitorWidth = 1000;
  static constexpr int kMonitorHeight = 600;
  /// Of the top bar, whose clock goes on.
  static constexpr int kBar = 40;

  explicit GnomeDesk(const GnomeOptions& options = {});
  ~GnomeDesk() override;

  [[nodiscard]] harness::Process& shell() { return *shell_; }

  /// What a script gives that runs in the shell, as JSON.
  [[nodiscard]] std::string evaluate(const std::string& script);
  /// What a person sees on all monitors, but for the top bar.
  [[nodiscard]] harness::Image seen();
  /// Whether nothing but the wallpaper is seen.
  [[nodiscard]] bool isBare() { return !harness::showsIcons(seen()); }

  /// Leaves only the first `count` of the monitors on.
  void setMonitors(int count);
  /// Whether the icons' window of that monitor is there, whatever covers it.
  [[nodiscard]] bool hasIcons(int monitor);
  /// Turns an extension of the shell on or off, as its user does.
  void turnExtension(const std::string& uuid, bool on);
  /// Whether that has been stored, for programs that start.
  [[nodiscard]] bool isTurnedOff(const std::string& uuid) const;
  /// Whether our button is on the top bar.
  [[nodiscard]] bool hasButton() {
    return evaluate("'calmdeck' in Main.panel.statusArea") == "true";
  }
  /// The screen locks, or its user is back; returns when our extension has gone or come.
  void lock(bool isLocked);
  /// Puts our extension where a shell finds it that starts from now on.
  void installExtension() const;

  /// Starts the program with these settings, and returns when it is there and its panel is closed
  /// again.
  void launch(const std::vector<std::string>& features, const std::string& settings = {});
  [[nodiscard]] harness::Process& program() { return *program_; }

  /// An ordinary program's window of one colour, which ends with the desktop. Returns when it has
  /// the keyboard.
  void openWindow(const std::string& title, const std::string& colour);
  /// The titles of the ordinary windows that are not minimised, from the lowest to the highest, and
  /// which has the keyboard: "red blue* green".
  [[nodiscard]] std::string windows();

 private:
  void startSystemBus();
  void configure(const GnomeOptions& options);
  void startShell(const GnomeOptions& options);
  void offerIcons();
  [[nodiscard]] std::filesystem::path extensions() const;

  /// Ours is on wherever the program runs.
  bool hasExtension_;
  std::unique_ptr<harness::Process> systemBus_;
  std::unique_ptr<harness::Process> shell_;
  std::vector<std::unique_ptr<harness::Process>> programs_;
  std::unique_ptr<harness::Process> program_;
};

}  // namespace gnome_test
