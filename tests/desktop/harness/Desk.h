#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/harness/Input.h"
#include "desktop/harness/PrivateHome.h"
#include "desktop/harness/Process.h"
#include "desktop/harness/Screen.h"
#include "desktop/harness/SessionBus.h"
#include "desktop/harness/SoundServer.h"

namespace harness {

/// By which Calmdeck is found on the bus.
inline constexpr const char* kCalmdeckName = "org.calmdeck.Calmdeck";

/// See Desk::writeSettings().
inline const std::vector<std::string> kAllFeatures{"DesktopIcons", "Dnd", "HideActiveApps",
                                                   "SpeakerOff", "Wallpaper"};
/// Further settings: the mode's shortcut is Control+Alt+P, or it shows this picture.
inline constexpr const char* kControlAltP =
    R"("kuserdefault_ToggleAppShortcut": "p", "kuserdefault_ToggleAppFlag": [12, 13])";
[[nodiscard]] std::string chosenPicture(const std::filesystem::path& picture);

/// What every private desktop has, whatever shows it: a home, the environment that its programs
/// inherit, a session bus and a sound server.
class Desk {
 public:
  virtual ~Desk() = default;
  Desk(const Desk&) = delete;
  Desk& operator=(const Desk&) = delete;

  [[nodiscard]] const PrivateHome& home() const { return home_; }
  [[nodiscard]] const Environment& environment() const { return environment_; }
  /// These abort the test when the desktop was made without them.
  [[nodiscard]] SessionBus& bus() { return *bus_; }
  [[nodiscard]] SoundServer& sound() { return *sound_; }
  [[nodiscard]] const Screen& screen() const { return *screen_; }
  [[nodiscard]] const Input& input() const { return *input_; }

  /// The areas of all panels.
  [[nodiscard]] virtual std::vector<Rect> panelAreas() const { return {}; }

  /// Starts Calmdeck as built in this tree; remembers how the panels looked, for trayIcon().
  [[nodiscard]] std::unique_ptr<Process> startCalmdeck(const Environment& extra = {});
  /// Where the icon of the Calmdeck that was started last shows.
  [[nodiscard]] std::optional<Rect> trayIcon() const {
    return iconFinder_ ? iconFinder_->find() : std::nullopt;
  }

  /// Starts any program on this desktop.
  [[nodiscard]] std::unique_ptr<Process> start(std::vector<std::string> argv,
                                               const Environment& extra = {}) const;
  /// Runs one to its end.
  [[nodiscard]] RunResult run(std::vector<std::string> argv) const;
  /// The same, and what it printed; throws std::runtime_error, with what it complained of, when it
  /// does not succeed.
  [[nodiscard]] std::string outputOf(std::vector<std::string> argv) const;
  /// The same, whatever it prints.
  void mustRun(std::vector<std::string> argv) const { (void)outputOf(std::move(argv)); }

  /// A picture of one colour in the home; its path.
  [[nodiscard]] std::string picture(const std::string& name, std::uint32_t colour) const;
  /// What Calmdeck finds when it starts: these features are switched on and no others, by the ends
  /// of their switches' keys, as "Dnd", and it does not start at login. `further` are members of
  /// JSON.
  void writeSettings(const std::vector<std::string>& features,
                     const std::string& further = {}) const;
  /// The file in which it keeps them; empty while there is none.
  [[nodiscard]] std::string settings() const {
    return textOf(home_.config() / "calmdeck/settings.json");
  }
  /// Has Calmdeck do one of its actions as scripts do it, so that its panel does not come up; once
  /// it is there. Throws std::runtime_error when it refuses.
  void perform(const std::string& action) const;
  void toggleMode() const { perform("toggle-presentation-mode"); }

  /// Has the notification daemon show something, or keep it back. Throws when it refuses.
  void notify(const std::string& summary) const;

  /// True as soon as `fact` holds; false when it still does not after `patience`. If that was all
  /// of it, what the last Calmdeck wrote goes to standard error.
  bool until(const std::function<bool()>& fact,
             std::chrono::milliseconds patience = kPatience) const;

 protected:
  explicit Desk(const Environment& extra);

  /// From here on programs find them.
  void startBus();
  void startSound(SoundServerKind kind);
  void setEnvironment(const std::string& name, const std::string& value) {
    environment_[name] = value;
  }
  [[nodiscard]] const SessionBus* busIfAny() const { return bus_.get(); }
  /// Throws, naming the program, when it is not `ready`.
  static void require(bool ready, const std::string& name, Process& process);

 private:
  PrivateHome home_;  // first: its destructor sweeps up after all the others
  Environment environment_;
  std::unique_ptr<SessionBus> bus_;
  std::unique_ptr<SoundServer> sound_;

 protected:
  /// Made by whoever knows the window system.
  std::unique_ptr<Screen> screen_;
  std::unique_ptr<Input> input_;

 private:
  std::optional<TrayIconFinder> iconFinder_;
  std::shared_ptr<const LineCapture> calmdeck_;
};

}  // namespace harness
