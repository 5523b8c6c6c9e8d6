#include "desktop/harness/DesktopPrograms.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <stdexcept>

namespace harness {

namespace {

// One row per value of the enumeration, in its order.
template <class Kind, std::size_t Count>
const DesktopProgram& rowOf(const std::array<DesktopProgram, Count>& table, Kind kind) {
  return table.at(static_cast<std::size_t>(kind));
}

// The program behind a service file, for what lies in a folder that depends on the machine's kind.
std::string programOfService(const std::string& serviceFile) {
  std::ifstream file("/usr/share/dbus-1/services/" + serviceFile);
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("Exec=")) return line.substr(5, line.find(' ') - 5);
  }
  return serviceFile;  // not installed: starting it says so
}

}  // namespace

const DesktopProgram& program(WindowManager kind) {
  static const std::array<DesktopProgram, 11> table{{
      {"none", {}},
      {"openbox", {"openbox", "--sm-disable"}},
      {"xfwm4", {"xfwm4", "--sm-client-disable"}},
      // The compositing of marco 1.27 shows the last step of a panel's entrance only when something
      // else changes.
      {"marco", {"marco", "--sm-disable", "--no-force-fullscreen", "--no-composite"}},
      // Its own bar would take the tray.
      {"icewm", {"icewm"}, "icewm/preferences", "ShowTaskBar=0\n"},
      {"fluxbox", {"fluxbox"}},
      {"jwm", {"jwm"}},
      // Its configuration is a program, which does nothing here.
      {"bspwm", {"bspwm", "-c", "/bin/true"}},
      {"i3-wm", {"i3"}, "i3/config", "font pango:monospace 8\n"},
      // GNOME's, without the shell that is usually around it.
      {"mutter", {"mutter", "--x11", "--sm-disable"}},
      {"kwin_x11", {"kwin_x11"}, "kwinrc", "[Desktops]\nNumber=4\n"},
  }};
  return rowOf(table, kind);
}

const DesktopProgram& program(Panel kind) {
  static const std::array<DesktopProgram, 5> table{{
      {"none", {}},
      {"xfce4-panel", {"xfce4-panel", "--disable-wm-check", "--sm-client-disable"}},
      {"tint2", {"tint2"}},
      {"lxqt-panel", {"lxqt-panel"}},
      {"mate-panel", {"mate-panel", "--replace"}},
  }};
  return rowOf(table, kind);
}

std::ostream& operator<<(std::ostream& stream, Compositor kind) {
  static const std::array names{"Sway", "Labwc", "Kwin"};
  return stream << names.at(static_cast<std::size_t>(kind));
}

std::vector<Compositor> installedCompositors() {
  return {HARNESS_COMPOSITORS};
}

std::vector<Compositor> installedOf(std::initializer_list<Compositor> kinds) {
  std::vector<Compositor> found = installedCompositors();
  std::erase_if(found,
                [&](Compositor kind) { return std::ranges::find(kinds, kind) == kinds.end(); });
  return found;
}

const DesktopProgram& program(NotificationDaemon kind) {
  static const std::array<DesktopProgram, 6> table{{
      {"none", {}},
      {"dunst", {"dunst"}},
      {"xfce4-notifyd", {programOfService("org.xfce.xfce4-notifyd.Notifications.service")}},
      {"mate-notification-daemon",
       {programOfService("org.freedesktop.mate.Notifications.service")}},
      {"lxqt-notificationd", {"lxqt-notificationd"}},
      {"notification-daemon", {"/usr/lib/notification-daemon/notification-daemon"}},
  }};
  return rowOf(table, kind);
}

const DesktopProgram& program(DesktopIcons kind) {
  static const std::array<DesktopProgram, 5> table{{
      {"none", {}},
      {"xfdesktop4", {"xfdesktop", "--sm-client-disable"}},
      {"pcmanfm", {"pcmanfm", "--desktop"}},
      {"caja", {"caja", "--no-default-window", "--force-desktop", "--sm-client-disable"}},
      {"pcmanfm-qt", {"pcmanfm-qt", "--desktop", "--profile", "lxqt"}},
  }};
  return rowOf(table, kind);
}

namespace {

/// The settings of a panel: a file of the folder "panels", where they go, and the panel's own words
/// for each Edge.
struct PanelSettings {
  const char* file;
  const char* target;
  std::array<const char*, 4> edges;
};
constexpr const char* kMateFile = "mate-panel.dconf";
constexpr std::array<PanelSettings, 4> kPanelSettings{{
    {"xfce4-panel.xml",
     "xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml",
     {"11", "12", "5", "1"}},  // its numbers for a panel snapped to the whole edge
    {"tint2rc",
     "tint2/tint2rc",
     {"top center horizontal", "bottom center horizontal", "center left vertical",
      "center right vertical"}},
    {"lxqt-panel.conf", "lxqt/panel.conf", {"Top", "Bottom", "Left", "Right"}},
    {kMateFile, kMateFile, {"top", "bottom", "left", "right"}},
}};

}  // namespace

void configurePanel(Panel kind, const PanelPlace& place, const PrivateHome& home,
                    const Environment& environment) {
  if (kind == Panel::None) return;
  const PanelSettings& settings = kPanelSettings.at(static_cast<std::size_t>(kind) - 1);
  const bool upright = place.edge == Edge::Left || place.edge == Edge::Right;
  const Environment values{{"edge", settings.edges.at(static_cast<std::size_t>(place.edge))},
                           {"upright", upright ? "1" : "0"},
                           {"monitor", std::to_string(place.monitor)},
                           {"number", std::to_string(place.monitor + 1)}};
  const std::string folder = HARNESS_FOLDER "/panels/";
  home.writeConfig(settings.target, filled(textOf(folder + settings.file), values));
  if (kind != Panel::MatePanel) return;
  const RunResult loaded =
      runToEnd({{"sh", "-c", "dconf load / < \"$0\"", home.config() / kMateFile}, environment});
  if (!loaded.succeeded()) throw std::runtime_error("dconf: " + loaded.errorOutput);
}

}  // namespace harness
