#pragma once

#include <array>
#include <ostream>
#include <string>
#include <vector>

#include "desktop/program/ProgramDesk.h"

/// A desktop with everything that the mode changes, as people have it.
struct FullDesktop {
  const char* name;
  harness::WindowManager windowManager;
  harness::Panel panel;
  harness::NotificationDaemon notifications;
  harness::DesktopIcons icons;
  harness::SoundServerKind sound;
};

/// What a test runner lists the case under.
void PrintTo(const FullDesktop& row, std::ostream* stream);

inline constexpr std::array kFullDesktops{
    FullDesktop{"Xfce", harness::WindowManager::Xfwm4, harness::Panel::XfcePanel,
                harness::NotificationDaemon::XfceNotifyd, harness::DesktopIcons::Xfdesktop,
                harness::SoundServerKind::PulseAudio},
    FullDesktop{"Mate", harness::WindowManager::Marco, harness::Panel::MatePanel,
                harness::NotificationDaemon::Mate, harness::DesktopIcons::Caja,
                harness::SoundServerKind::PipeWire},
    FullDesktop{"Lxqt", harness::WindowManager::Openbox, harness::Panel::LxqtPanel,
                harness::NotificationDaemon::Lxqt, harness::DesktopIcons::PcmanfmQt,
                harness::SoundServerKind::PipeWire},
    FullDesktop{"Openbox", harness::WindowManager::Openbox, harness::Panel::Tint2,
                harness::NotificationDaemon::Dunst, harness::DesktopIcons::Pcmanfm,
                harness::SoundServerKind::PulseAudio},
    FullDesktop{"BareRoot", harness::WindowManager::Openbox, harness::Panel::Tint2,
                harness::NotificationDaemon::Dunst, harness::DesktopIcons::None,
                harness::SoundServerKind::PulseAudio},
};

/// One of these desktops with two monitors, icons and windows on them, and the program, told to do
/// all that it can. Its effects are looked at from outside, by clients that are not its own. What
/// waits for a fact fails with what the program wrote.
class ModeDesk {
 public:
  explicit ModeDesk(const FullDesktop& kind);

  [[nodiscard]] harness::XDesk& desk() { return program_.desk(); }
  [[nodiscard]] ProgramDesk& program() { return program_; }

  /// Two windows on the first monitor, one on the second, one on another workspace, and one that
  /// the user has minimised.
  [[nodiscard]] testing::AssertionResult openWindows();
  /// Starts the program, for the first time or anew; its panel is closed then.
  [[nodiscard]] testing::AssertionResult startProgram();
  /// Clicks on the icon where the panel is closed, then on the switch.
  [[nodiscard]] testing::AssertionResult click(const std::string& name);
  [[nodiscard]] testing::AssertionResult clickMaster() { return click(ProgramDesk::kMaster); }
  [[nodiscard]] testing::AssertionResult closePanel();

  // Each waits until the effect is there, or is not.
  [[nodiscard]] testing::AssertionResult muted(bool muted) { return program_.sinkMuted(muted); }
  [[nodiscard]] testing::AssertionResult quiet(bool quiet);
  [[nodiscard]] testing::AssertionResult othersHidden(bool hidden);
  [[nodiscard]] testing::AssertionResult showsChosenPicture(bool chosen);
  /// Covers of the monitors' places, no more and no fewer, or none.
  [[nodiscard]] testing::AssertionResult covered(bool covered);
  /// All five.
  [[nodiscard]] testing::AssertionResult inTheMode(bool on);
  /// Nothing with an edge is to be seen on any monitor but in `apart` and the panel.
  [[nodiscard]] testing::AssertionResult bare(const std::vector<harness::Rect>& apart = {});

  /// Every monitor shows to the pixel what it showed in `before`; beside a smaller monitor lies
  /// what nobody sees.
  [[nodiscard]] testing::AssertionResult looksAsIn(const harness::Image& before);

  /// The user's windows, for people to compare: which is active, which are to be seen, bottom to
  /// top, and of each where it is.
  [[nodiscard]] std::string windowsNow();
  [[nodiscard]] std::string backdropSettings();
  /// The whole screen at rest, with the pointer out of the way.
  [[nodiscard]] harness::Image photograph();

  [[nodiscard]] const std::vector<harness::WindowInfo>& shown() const { return shown_; }

 private:
  [[nodiscard]] testing::AssertionResult waitFor(const std::function<bool()>& fact,
                                                 const std::string& claim);
  [[nodiscard]] bool everyMonitorHasItsCover();
  [[nodiscard]] bool isBare(const harness::Rect& monitor, std::vector<harness::Rect> apart);

  const FullDesktop kind_;
  ProgramDesk program_;
  std::vector<harness::WindowInfo> shown_;
  std::optional<harness::WindowInfo> minimised_;
};
