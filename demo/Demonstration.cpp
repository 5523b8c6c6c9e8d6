#include "demo/Demonstration.h"

#include <algorithm>
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "desktop/harness/DesktopConfiguration.h"
#include "desktop/harness/Screen.h"

namespace demo {

using namespace std::chrono_literals;
using harness::AccessibilityClient;
using harness::Image;
using harness::Rect;

namespace {

constexpr const char* kMasterSwitch = "Presentation mode";

constexpr const char* kMicrophone = "microphone";
// As the settings have it, and as it is pressed.
constexpr const char* kMicrophoneShortcut =
    R"("kuserdefault_MuteMicShortcut": "M", "kuserdefault_MuteMicFlag": [12, 13])";
constexpr const char* kMicrophoneKeys = "ctrl+alt+m";

// The features that the demonstration switches on, by the names of their switches.
constexpr const char* kFeatureSwitches[] = {"Hide desktop icons", "Do Not Disturb",
                                            "Hide other applications", "Mute speaker",
                                            "Change wallpaper"};

// Where xfdesktop puts its icons, and what of each monitor nothing else stands on.
constexpr Rect kIconColumn{0, 0, 110, 480};
constexpr Rect kBareSpots[] = {{780, 580, 40, 40}, {2150, 500, 40, 40}};

// A short name for a picture, so that a person can tell two of them apart.
std::string fingerprint(const Image& image) {
  std::uint32_t hash = 2166136261U;  // FNV-1a
  for (const std::uint32_t pixel : image.pixels) hash = (hash ^ pixel) * 16777619U;
  std::ostringstream text;
  text << std::hex << hash;
  return text.str();
}

// The colour in the middle, as "#rrggbb".
std::string middleColour(const Image& image) {
  std::ostringstream text;
  text << '#' << std::hex << std::setfill('0') << std::setw(6)
       << image.at(image.width / 2, image.height / 2);
  return text.str();
}

std::string oneLine(std::string text) {
  while (text.ends_with('\n')) text.pop_back();
  return text;
}

void say(const std::string& text) {
  std::cout << text << std::endl;
}

}  // namespace

Demonstration::Demonstration(const std::filesystem::path& folder)
    : folder_(std::filesystem::absolute(folder)),
      desk_(harness::everydayDesktop()),
      reader_(desk_) {
  std::filesystem::create_directories(folder_);
  desk_.sound().addSource(kMicrophone);
}

std::vector<Observation> Demonstration::observations() {
  return {
      {"default sink muted (pactl)",
       [this] {
         return desk_.sound().pactl({"get-sink-mute", "@DEFAULT_SINK@"}).substr(6);
       }},
      {"microphone muted, by its shortcut (pactl)",
       [this] {
         return desk_.sound().pactl({"get-source-mute", kMicrophone}).substr(6);
       }},
      {"Do Not Disturb (dunstctl is-paused)",
       [this] {
         return oneLine(desk_.run({"dunstctl", "is-paused"}).output);
       }},
      {"hidden windows of other applications (_NET_WM_STATE)", [this] { return hiddenWindows(); }},
      {"desktop icons (edges where they stand)",
       [this] {
         return harness::showsIcons(desk_.screen().area(kIconColumn)) ? "seen" : "covered";
       }},
      {"picture on the first monitor (a pixel)",
       [this] { return middleColour(desk_.screen().area(kBareSpots[0])); }},
      {"picture on the second monitor (a pixel)",
       [this] { return middleColour(desk_.screen().area(kBareSpots[1])); }},
      {"tray icon (fingerprint of its pixels)",
       [this] { return fingerprint(desk_.screen().area(icon_)); }},
  };
}

std::string Demonstration::hiddenWindows() const {
  const auto hidden = std::ranges::count_if(windows_, [this](const harness::WindowInfo& window) {
    const auto now = desk_.windows().info(window.id);
    return now && now->has("HIDDEN");
  });
  return std::to_string(hidden) + " of " + std::to_string(windows_.size());
}

bool Demonstration::run() {
  const auto until = [this](const std::function<bool()>& fact) { return desk_.until(fact); };
  furnishDesktop();
  openWindows();
  startProgram();
  ObservationTable table(observations());
  table.readBefore();
  screenshot("1-before");

  say("A click on the tray icon opens the panel; one on each feature's switch chooses it.");
  openPanel();
  for (const char* feature : kFeatureSwitches) clickSwitch(feature);
  screenshot("2-panel");

  say("A click on the master switch turns presentation mode on, Ctrl+Alt+M the microphone off.");
  clickSwitch(kMasterSwitch);
  desk_.input().key(kMicrophoneKeys);
  table.readOn(until);
  screenshot("3-on");

  say("The same keys and another click turn both back.");
  desk_.input().key(kMicrophoneKeys);
  clickSwitch(kMasterSwitch);
  table.readOff(until);
  screenshot("4-off");
  closePanel();
  endProgram();

  std::cout << '\n' << table.text() << "\nScreenshots: " << folder_.string() << std::endl;
  return table.allChangedAndReturned();
}

void Demonstration::furnishDesktop() {
  const std::filesystem::path home = desk_.home().home();
  harness::furnish(desk_.home());
  harness::configureIcons(desk_, harness::DesktopIcons::Xfdesktop,
                          {{.picture = home / "dusk.png"}, {.picture = home / "dusk.png"}});
  desk_.home().writeConfig("calmdeck/settings.json", R"({"kUserdefaultsSelectedWallpaper": ")" +
                                                         (home / "meadow.png").string() + "\", " +
                                                         kMicrophoneShortcut + "}\n");
  desk_.startIcons(harness::DesktopIcons::Xfdesktop);
  if (!desk_.until([this] { return harness::showsIcons(desk_.screen().area(kIconColumn)); }))
    throw std::runtime_error("no icons appeared on the desktop");
}

void Demonstration::openWindows() {
  windows_.push_back(desk_.openWindow("Quarterly figures", {160, 90, 480, 260}));
  windows_.push_back(desk_.openWindow("Private letter", {520, 260, 420, 220}));
  windows_.push_back(desk_.openWindow("Second monitor", {1500, 150, 400, 220}));
}

void Demonstration::startProgram() {
  desk_.input().moveTo(640, 20);
  program_ = desk_.startCalmdeck(AccessibilityClient::accessibleEnvironment());
  const auto icon = desk_.trayIcon();
  if (!icon) throw std::runtime_error("no tray icon appeared: " + program_->errorOutput());
  icon_ = *icon;
  // At launch the panel opens by itself. Whether it does is not what is shown here.
  if (desk_.until([this] { return desk_.openPopover().has_value(); }, 3s)) closePanel();
}

void Demonstration::openPanel() {
  if (desk_.openPopover()) return;
  desk_.input().click(icon_.centreX(), icon_.centreY());
  if (!desk_.until([this] { return desk_.openPopover().has_value(); }))
    throw std::runtime_error("the panel did not open");
}

void Demonstration::closePanel() {
  if (!desk_.openPopover()) return;
  desk_.until([this] {
    const auto panel = desk_.openPopover();
    return !panel || desk_.windows().active() == panel->id;
  });
  desk_.input().key("Escape");
  if (!desk_.until([this] { return !desk_.openPopover(); }))
    throw std::runtime_error("the panel did not close");
}

void Demonstration::clickSwitch(const std::string& name) {
  openPanel();
  const auto found = reader_.await(name);
  if (!found) throw std::runtime_error("the panel has no switch \"" + name + "\"");
  const bool wasOn = found->is("checked");
  desk_.input().click(found->area.centreX(), found->area.centreY());
  const auto flipped = [&] {
    const auto now = reader_.await(name, 0ms);
    return now && now->is("checked") != wasOn;
  };
  if (!desk_.until(flipped)) throw std::runtime_error("the switch \"" + name + "\" did not flip");
}

void Demonstration::screenshot(const std::string& name) {
  const Image image = desk_.screen().settled(desk_.x().screenArea(), 500ms, 5s);
  harness::writePng(image, folder_ / (name + ".png"));
}

void Demonstration::endProgram() {
  const harness::ProcessEnd end = program_->terminate(5s);
  if (end != harness::ProcessEnd{0, 0})
    throw std::runtime_error("Calmdeck did not end well: " + program_->errorOutput());
}

}  // namespace demo
