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
  /// In the mode; else it is ended by its menu. What it leaves behind differs by the desktop only.
  bool isKilled = true;
};

/// What a test runner lists the case under.
void PrintTo(const FullDesktop& row, std::ostream* stream);

inline constexpr std::array kFullDesktops{
    FullDesktop{"Xfce", harness::WindowManager::Xfwm4, harness::Panel::XfcePanel,
                harness::NotificationDaemon::XfceNotifyd, harness::DesktopIcons::Xfdesktop,
                harness::SoundServerKind::PulseAudio, false},
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
                harness::SoundServerKind::PulseAudio, false},
};

/// One of these desktops with two monitors, icons and windows on them, and the program, told to do
/// all that it can. Its effects are looked at from outside, by clients that are not its own.
class ModeDesk : public ProgramDesk {
 public:
  explicit ModeDesk(const FullDesktop& kind);

  /// Two windows on the first monitor, one on the second, one on another workspace, and one that
  /// the user has minimised.
  [[nodiscard]] bool openWindows();
  /// Starts the program, for the first time or anew; its panel is closed then.
  [[nodiscard]] bool startClosed();
  /// Clicks on the icon where the panel is closed, then on the switch.
  [[nodiscard]] bool turn(const std::string& name) {
    return (desk.openPopover() || (clickIcon() && opens())) && click(name);
  }
  [[nodiscard]] bool turnMaster() { return turn(kMaster); }

  // Each waits until the effect is there, or is not.
  [[nodiscard]] bool quiet(bool quiet);
  [[nodiscard]] bool othersHidden(bool hidden);
  [[nodiscard]] bool showsChosenPicture(bool chosen);
  /// All five.
  void expectTheMode(bool on);
  /// Nothing with an edge is to be seen on any monitor but in `apart` and the panel.
  [[nodiscard]] bool bare(const std::vector<harness::Rect>& apart = {});

  /// The user's windows, for people to compare: which is active, which are to be seen, bottom to
  /// top, and of each where it is.
  [[nodiscard]] std::string windowsNow();
  [[nodiscard]] std::string backdropSettings();
  /// Each monitor at rest, with the pointer out of the way.
  [[nodiscard]] std::vector<harness::Image> photograph();

 private:
  [[nodiscard]] bool isBare(const harness::Rect& monitor, std::vector<harness::Rect> apart);

  const FullDesktop kind_;
  std::vector<harness::WindowInfo> shown_;
};
