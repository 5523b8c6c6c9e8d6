#include "desktop/program/ShellDesk.h"

#include <signal.h>

#include <algorithm>
#include <filesystem>

using harness::Image;
using harness::Rect;
using harness::WindowInfo;
using testing::AssertionFailure;
using testing::AssertionResult;
using testing::AssertionSuccess;
namespace fs = std::filesystem;

namespace {

constexpr const char* kSink = "out1";
constexpr const char* kCoverClass = "calmdeck-cover";
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
    : shell_(shell),
      desk_({.sound = harness::SoundServerKind::PulseAudio,
             .environment = {{"XDG_CURRENT_DESKTOP", shell.currentDesktop},
                             {"XDG_SESSION_TYPE", "x11"}}}) {
  harness::furnish(desk_.home());
  keepOthersFromStarting();
  for (const auto& setting : shell.settings) set(setting);
}

/// What a session starts beside its own needs services of the machine.
void ShellDesk::keepOthersFromStarting() {
  for (const auto& entry : fs::directory_iterator("/etc/xdg/autostart")) {
    const std::string name = entry.path().filename();
    const bool isNeeded = name.find("background") != std::string::npos ||
                          name.find("xsettings") != std::string::npos || name.starts_with("nemo");
    if (!isNeeded) desk_.home().writeConfig("autostart/" + name, "[Desktop Entry]\nHidden=true\n");
  }
}

void ShellDesk::set(std::vector<std::string> setting) {
  for (std::string& word : setting) word = harness::filled(word, {{"home", desk_.home().home()}});
  setting.insert(setting.begin(), {"gsettings", "set"});
  const harness::RunResult done = desk_.run(setting);
  if (!done.succeeded()) throw std::runtime_error("gsettings: " + done.errorOutput);
}

void ShellDesk::install(const std::string& schema, const fs::path& override) {
  const fs::path folder = desk_.home().home() / ".local/share/glib-2.0/schemas";
  fs::create_directories(folder);
  fs::copy_file("/usr/share/glib-2.0/schemas/" + schema, folder / schema);
  fs::copy_file(override, folder / override.filename());
  const harness::RunResult done = desk_.run({"glib-compile-schemas", "--strict", folder});
  if (!done.succeeded()) throw std::runtime_error("no schemas: " + done.errorOutput);
}

AssertionResult ShellDesk::startShell() {
  // It only has to be there: nobody is on it.
  programs_.push_back(
      desk_.start({"dbus-daemon", "--session", "--nofork", "--nopidfile",
                   "--address=" + desk_.environment().at("DBUS_SYSTEM_BUS_ADDRESS")}));
  const fs::path socket = desk_.home().runtime() / "system-bus";
  if (!desk_.until([&] { return fs::exists(socket); })) return AssertionFailure() << "no bus";
  for (const auto& program : shell_.programs) programs_.push_back(desk_.start(program));
  const auto isThere = [&] {
    return desk_.bus().hasOwner(shell_.busName) &&
           desk_.bus().hasOwner("org.freedesktop.Notifications");
  };
  if (AssertionResult started = waitFor(isThere, "the shell runs"); !started) return started;
  const auto shown = [&] { return (iconWindows() > 0) == shell_.hasIcons; };
  if (AssertionResult result = waitFor(shown, "icons are as wanted"); !result) return result;
  for (const int x : {200, 1400}) (void)desk_.openWindow("Figures", {x, 200, 300, 200});
  return waitFor(
      [&] {
        return std::ranges::all_of(monitors(), [&](const Rect& monitor) {
          return harness::isOf(harness::dusk,
                               desk_.screen().pixel(monitor.right() - 60, monitor.centreY()));
        });
      },
      "the wallpaper shows");
}

void ShellDesk::launch() {
  program_.emplace(desk_, harness::kAllFeatures,
                   harness::chosenPicture(desk_.home().home() / "meadow.png"));
}

AssertionResult ShellDesk::waitFor(const std::function<bool()>& fact, const std::string& claim) {
  // They start, paint and fade late where nothing helps them to draw.
  constexpr auto kLong = 4 * harness::kPatience;
  if (desk_.until(fact, kLong)) return AssertionSuccess();
  AssertionResult failure = AssertionFailure();
  failure << "not so: " << claim << "; the program wrote\n"
          << (program_ ? program_->process().errorOutput() : "") << "and the shell's\n";
  for (const auto& program : programs_) failure << program->errorOutput();
  return failure;
}

std::vector<Rect> ShellDesk::monitors() {
  std::vector<Rect> monitors = desk_.server().monitors();
  monitors.front().y += kThickestPanel;
  monitors.front().height -= 2 * kThickestPanel;
  return monitors;
}

AssertionResult ShellDesk::showsThePictureOnly() {
  return waitFor(
      [&] {
        const Image whole = desk_.screen().whole();
        return std::ranges::all_of(monitors(), [&](const Rect& monitor) {
          const Image image = whole.part(monitor);
          return harness::isOf(harness::meadow, image.at(image.width / 2, image.height / 2)) &&
                 !harness::showsIcons(image);
        });
      },
      "nothing but the picture is to be seen");
}

AssertionResult ShellDesk::inTheMode() {
  if (AssertionResult bare = showsThePictureOnly(); !bare) return bare;
  return waitFor([&] { return desk_.sound().sinkMuted(kSink) == true; }, "the speaker is off");
}

std::vector<Image> ShellDesk::photograph() {
  using namespace std::chrono_literals;
  constexpr int kAwayX = 2200;
  constexpr int kAwayY = 500;
  desk_.input().moveTo(kAwayX, kAwayY);
  const Image whole = desk_.settled(800ms);
  std::vector<Image> images;
  for (const Rect& monitor : monitors()) images.push_back(whole.part(monitor));
  return images;
}

AssertionResult ShellDesk::looksAsIn(const std::vector<Image>& before) {
  return waitFor([&] { return photograph() == before; }, "the screen is as before");
}

AssertionResult ShellDesk::changesFrom(const std::vector<Image>& before) {
  return waitFor(
      [&] {
        const Image whole = desk_.screen().whole();
        return !std::ranges::equal(monitors(), before, {},
                                   [&](const Rect& monitor) { return whole.part(monitor); });
      },
      "something else shows");
}

AssertionResult ShellDesk::notify() {
  const harness::RunResult done = desk_.run(
      {"gdbus", "call", "--session", "--dest", "org.freedesktop.Notifications", "--object-path",
       "/org/freedesktop/Notifications", "--method", "org.freedesktop.Notifications.Notify", "mail",
       "0", "", "A letter", "for you", "[]", "{}", "60000"});
  return done.succeeded() ? AssertionSuccess() : AssertionFailure() << done.errorOutput;
}

std::string ShellDesk::backgrounds() const {
  return desk_.run({"dconf", "dump", shell_.backgrounds}).output;
}

std::size_t ShellDesk::iconWindows() const {
  const std::vector<WindowInfo> windows = desk_.windows().all();
  return static_cast<std::size_t>(std::ranges::count_if(windows, [](const WindowInfo& window) {
    return window.viewable && window.type == "DESKTOP" && window.className != kCoverClass;
  }));
}

void ShellDesk::killIcons() {
  const auto icons = desk_.windows().findViewable([](const WindowInfo& window) {
    return window.type == "DESKTOP" && window.className != kCoverClass;
  });
  ASSERT_TRUE(icons.has_value());
  const auto process = desk_.x().number(icons->id, "_NET_WM_PID");
  ASSERT_TRUE(process.has_value());
  ::kill(static_cast<pid_t>(*process), SIGKILL);
}
