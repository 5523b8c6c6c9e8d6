#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "desktop/harness/PrivateHome.h"
#include "desktop/harness/XConnection.h"

namespace harness {

enum class WindowManager : std::uint8_t {
  None,
  Openbox,
  Xfwm4,
  Marco,
  Icewm,
  Fluxbox,
  Jwm,
  Bspwm,
  I3,
  Mutter,
  Kwin
};
enum class Panel : std::uint8_t { None, XfcePanel, Tint2, LxqtPanel, MatePanel };

/// On Wayland. Those that are installed are installedCompositors().
enum class Compositor : std::uint8_t { Sway, Labwc, Kwin };
std::ostream& operator<<(std::ostream& stream, Compositor kind);
[[nodiscard]] std::vector<Compositor> installedCompositors();
/// Those of them that are.
[[nodiscard]] std::vector<Compositor> installedOf(std::initializer_list<Compositor> kinds);

enum class NotificationDaemon : std::uint8_t {
  None,
  Dunst,
  XfceNotifyd,
  Mate,
  Lxqt,
  Plain,  // has no Do Not Disturb
};
enum class DesktopIcons : std::uint8_t { None, Xfdesktop, Pcmanfm, Caja, PcmanfmQt };
enum class Edge : std::uint8_t { Top, Bottom, Left, Right };

/// Where a panel stands; it spans the whole edge and holds nothing but a tray. lxqt-panel refuses
/// an edge at which another monitor begins.
struct PanelPlace {
  Edge edge = Edge::Bottom;
  int monitor = 0;  // as XDesk counts them
};

/// A way to start one program of a desktop: a row of the tables in DesktopPrograms.cpp.
struct DesktopProgram {
  /// Also the name of the Debian package.
  std::string name;
  std::vector<std::string> argv;
  /// A configuration file that it needs, relative to the configuration folder, and its text.
  std::string configFile = {};
  std::string configText = {};
};

[[nodiscard]] const DesktopProgram& program(WindowManager kind);
[[nodiscard]] const DesktopProgram& program(Panel kind);
[[nodiscard]] const DesktopProgram& program(NotificationDaemon kind);
[[nodiscard]] const DesktopProgram& program(DesktopIcons kind);

/// For the names of parameterised tests.
template <class Kind>
requires requires(Kind kind) {
  program(kind);
}
std::ostream& operator<<(std::ostream& stream, Kind kind) {
  std::string name = program(kind).name;
  std::erase(name, '-');
  return stream << name;
}

/// Writes the panel's configuration. `environment` must be that of the desktop with its session
/// bus, since some panels keep their settings behind it.
void configurePanel(Panel kind, const PanelPlace& place, const PrivateHome& home,
                    const Environment& environment);

}  // namespace harness
