#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "desktop/harness/XDesk.h"

namespace harness {

/// xfwm4, a panel, dunst and PulseAudio; the icons are for whoever has configured them to start.
[[nodiscard]] DeskOptions everydayDesktop();

/// What a monitor shows behind its icons.
struct MonitorBackdrop {
  std::filesystem::path picture = {};
  std::string colour = "#305070";
  /// In the desktop's own words; empty: the picture covers the whole of the monitor, or where there
  /// is none the colour does.
  std::string style = {};
  /// Over the colour another one comes in by and by, where the desktop can do that.
  bool isShaded = false;
  /// Of LXQt's desktop: laid out on each monitor by itself.
  bool onEach = false;
};

/// Tells a program that draws icons, before it starts, what to show behind them on each monitor,
/// and to show no icons but of what lies in the desktop folder, which is made. Programs that know
/// only one backdrop take the first monitor's. Without such a program the root window gets it.
/// Throws std::runtime_error when a settings client refuses.
void configureIcons(const XDesk& desk, DesktopIcons kind,
                    const std::vector<MonitorBackdrop>& backdrops);

/// Sets one key with xfconf-query, making it where it is absent.
void setXfconf(const XDesk& desk, const std::string& channel, const std::string& key,
               const std::string& type, const std::string& value);

/// All that the icon program's desktop keeps of its backdrops, absent keys and files told from
/// empty ones: as xfconf-query, dconf and the configuration files have it. Without such a program a
/// number for the root window's picture.
[[nodiscard]] std::string backdropSettings(const XDesk& desk, DesktopIcons kind);

/// Whether a notification daemon keeps its peace, as its desktop's own tools tell it; none where
/// nobody has ever set it, or they cannot tell.
[[nodiscard]] std::optional<bool> doNotDisturb(const XDesk& desk, NotificationDaemon kind);

}  // namespace harness
