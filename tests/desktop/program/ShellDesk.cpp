#include "desktop/program/ShellDesk.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

using harness::Image;
namespace fs = std::filesystem;

namespace {

/// Panels are at the top and at the bottom of the first monitor.
constexpr int kThickestPanel = 48;

}  // namespace

const Shell kCinnamon{
    .name = "Cinnamon",
    .currentDesktop = "X-Cinnamon",
    .busName = "org.Cinnamon",
    // Without its session nobody paints the background.
    .programs = {{"cinnamon-session", "--session", "cinnamon"}},
    .settings = {{"org.cinnamon.desktop.background", "picture-uri", "file://{home}/dusk.png"}},
    .backgrounds = "/org/cinnamon/desktop/background/"};

const Shell kBudgie{
    .name = "Budgie",
    .currentDesktop = "Budgie:GNOME",
    .busName = "org.budgie_desktop.BudgieWM",
    .programs = {{"/usr/libexec/gsd-xsettings"},
                 {"budgie-wm"},
                 {"budgie-daemon"},
                 {"budgie-panel"},
                 {"org.buddiesofbudgie.budgie-desktop-view"}},
    .settings = {{"org.gnome.desktop.background", "picture-uri", "file://{home}/dusk.png"},
                 {"org.buddiesofbudgie.budgie-desktop-view", "show", "true"}},
    .backgrounds = "/org/gnome/desktop/background/"};

const Shell kFlashback{
    .name = "Flashback",
    .currentDesktop = "GNOME-Flashback:GNOME",
    .busName = "org.gnome.Flashback",
    .programs = {{"/usr/libexec/gsd-xsettings"},
                 {"metacity"},
                 {"gnome-flashback"},
                 {"gnome-panel"}},
    .settings = {{"org.gnome.desktop.background", "picture-uri", "file://{home}/dusk.png"}},
    .backgrounds = "/org/gnome/desktop/background/",
    .canBeQuiet = false};

void PrintTo(const Shell& row, std::ostream* stream) {
  *stream << row.name;
}

ShellDesk::ShellDesk(const Shell& shell)
    : desk({.sound = harness::SoundServerKind::PulseAudio,
            .environment = {{"XDG_CURRENT_DESKTOP", shell.currentDesktop},
                            {"XDG_SESSION_TYPE", "x11"}}}),
      shell_(shell) {
  harness::furnish(desk.home());
  keepOthersFromStarting();
  for (const auto& setting : shell.settings) set(setting);
}

/// What a session starts beside its own needs services of the machine.
void ShellDesk::keepOthersFromStarting() {
  for (const auto& entry : fs::directory_iterator("/etc/xdg/autostart")) {
    const std::string name = entry.path().filename();
    const bool isNeeded = name.find("background") != std::string::npos ||
                          name.find("xsettings") != std::string::npos || name.starts_with("nemo");
    if (!isNeeded) desk.home().writeConfig("autostart/" + name, "[Desktop Entry]\nHidden=true\n");
  }
}

void ShellDesk::set(std::vector<std::string> setting) {
  for (std::string& word : setting) word = harness::filled(word, {{"home", desk.home().home()}});
  setting.insert(setting.begin(), {"gsettings", "set"});
  desk.mustRun(setting);
}

void ShellDesk::install(const std::string& schema, const fs::path& override) {
  const fs::path folder = desk.home().home() / ".local/share/glib-2.0/schemas";
  fs::create_directories(folder);
  fs::copy_file("/usr/share/glib-2.0/schemas/" + schema, folder / schema);
  fs::copy_file(override, folder / override.filename());
  desk.mustRun({"glib-compile-schemas", "--strict", folder});
}

void ShellDesk::startSystemBus() {
  // It only has to be there: nobody is on it.
  programs_.push_back(
      desk.start({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address",
                  "--address=" + desk.environment().at("DBUS_SYSTEM_BUS_ADDRESS")}));
  if (!programs_.back()->waitForLine("^unix:")) throw std::runtime_error("no system bus");
}

bool ShellDesk::start() {
  startSystemBus();
  for (const auto& program : shell_.programs) programs_.push_back(desk.start(program));
  const auto isThere = [&] {
    return desk.bus().hasOwner(shell_.busName) &&
           desk.bus().hasOwner("org.freedesktop.Notifications") &&
           desk.iconWindows().empty() != shell_.hasIcons;
  };
  if (!until(isThere)) return false;
  for (const int x : {200, 1400}) (void)desk.openWindow("Figures", {x, 200, 300, 200});
  const auto showsWallpaper = [](const Image& monitor) {
    return harness::isOf(harness::dusk, monitor.at(monitor.width - 60, monitor.height / 2));
  };
  if (!until([&] { return std::ranges::all_of(seen(), showsWallpaper); })) return false;
  program_.emplace(desk, harness::kAllFeatures,
                   harness::chosenPicture(desk.home().home() / "meadow.png"));
  return true;
}

std::vector<Image> ShellDesk::partsOf(const Image& whole) const {
  std::vector<harness::Rect> monitors = desk.server().monitors();
  monitors.front().y += kThickestPanel;
  monitors.front().height -= 2 * kThickestPanel;
  std::vector<Image> parts;
  parts.reserve(monitors.size());
  for (const harness::Rect& monitor : monitors) parts.push_back(whole.part(monitor));
  return parts;
}

std::vector<Image> ShellDesk::seen() const {
  return partsOf(desk.screen().whole());
}

std::vector<Image> ShellDesk::photograph() {
  constexpr int kAwayX = 2200;
  constexpr int kAwayY = 500;
  desk.input().moveTo(kAwayX, kAwayY);
  return partsOf(desk.settled(std::chrono::milliseconds(800)));
}

bool ShellDesk::showsThePictureOnly() const {
  return std::ranges::all_of(seen(), [](const Image& image) {
    return harness::isOf(harness::meadow, image.at(image.width / 2, image.height / 2)) &&
           !harness::showsIcons(image);
  });
}

bool ShellDesk::inTheMode() {
  return until([&] { return showsThePictureOnly() && desk.sound().sinkMuted("out1"); });
}

std::string ShellDesk::backgrounds() const {
  return desk.run({"dconf", "dump", shell_.backgrounds}).output;
}
