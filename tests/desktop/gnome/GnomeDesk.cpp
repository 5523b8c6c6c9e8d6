#include "desktop/gnome/GnomeDesk.h"

#include <fstream>
#include <regex>
#include <stdexcept>

namespace gnome_test {

namespace fs = std::filesystem;
using harness::Image;

namespace {

constexpr const char* kInstalled = "/usr/share/gnome-shell/extensions";

std::string quoted(const std::string& text) {
  return "'" + text + "'";
}

/// A mouse and a keyboard that the shell itself plugs into its seat. Programs that start after this
/// find them there, and miss nothing of what they do.
class Devices final : public harness::Input {
 public:
  explicit Devices(GnomeDesk& desk) : desk_(desk) {
    (void)desk_.evaluate(
        "const {Clutter: C} = imports.gi;"
        "const seat = C.get_default_backend().get_default_seat();"
        "const plug = type => seat.create_virtual_device(C.InputDeviceType[type + '_DEVICE']);"
        "global.calmdeckTest = {POINTER: plug('POINTER'), KEYBOARD: plug('KEYBOARD')}; 0");
  }

  void moveTo(int x, int y) const override {
    act("POINTER.notify_absolute_motion(now, " + std::to_string(x) + ", " + std::to_string(y) +
        ")");
  }
  void press(harness::Button button) const override { turn(button, "PRESSED"); }
  void release(harness::Button button) const override { turn(button, "RELEASED"); }
  void keyDown(std::string_view name) const override { move(name, "PRESSED"); }
  void keyUp(std::string_view name) const override { move(name, "RELEASED"); }

 private:
  /// The shell counts as X does.
  void turn(harness::Button button, const char* state) const {
    act("POINTER.notify_button(now, " + std::to_string(static_cast<int>(button)) +
        ", C.ButtonState." + state + ")");
  }
  void move(std::string_view name, const char* state) const {
    act("KEYBOARD.notify_keyval(now, " + std::to_string(harness::keysymOf(name)) + ", C.KeyState." +
        state + ")");
  }
  void act(const std::string& what) const {
    (void)desk_.evaluate(
        "const {Clutter: C, GLib} = imports.gi; const now = GLib.get_monotonic_time();"
        "global.calmdeckTest." +
        what + "; 0");
  }

  GnomeDesk& desk_;
};

}  // namespace

// --- Start ---

GnomeDesk::GnomeDesk(const GnomeOptions& options)
    : Desk({{"XDG_SESSION_TYPE", "wayland"}, {"XDG_CURRENT_DESKTOP", "GNOME"}}),
      hasExtension_(options.extension) {
  fs::create_directories(extensions());
  setEnvironment("XDG_DATA_DIRS",
                 (home().runtime() / "data").string() + ":/usr/local/share:/usr/share");
  setEnvironment("WAYLAND_DISPLAY", home().runtime() / "wayland-gnome");
  startBus();
  startSystemBus();
  if (options.extension) installExtension();
  if (options.icons) offerIcons();
  configure(options);
  startShell(options);
}

GnomeDesk::~GnomeDesk() = default;

fs::path GnomeDesk::extensions() const {
  return home().runtime() / "data/gnome-shell/extensions";
}

void GnomeDesk::installExtension() const {
  fs::create_directory_symlink(fs::path(SHELL_EXTENSIONS) / kOurExtension,
                               extensions() / kOurExtension);
}

// It starts the program that draws them anew where that took three seconds, for ever on a busy
// machine.
void GnomeDesk::offerIcons() {
  const fs::path copy = extensions() / kIconsExtension;
  fs::copy(fs::path(kInstalled) / kIconsExtension, copy, fs::copy_options::recursive);
  const std::string text = harness::textOf(copy / "extension.js");
  std::ofstream(copy / "extension.js")
      << std::regex_replace(text, std::regex("\\b3000\\b"), "60000");
  for (const char* name : {"one.txt", "two.txt"}) {
    fs::create_directories(home().home() / "Desktop");
    std::ofstream(home().home() / "Desktop" / name) << name;
  }
  home().writeConfig("user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/Desktop\"\n");
}

// The shell does not do without one, but without everything that is usually on it.
void GnomeDesk::startSystemBus() {
  const fs::path configuration = home().runtime() / "system-bus.conf";
  std::ofstream(configuration) << "<busconfig><type>system</type><auth>EXTERNAL</auth><listen>"
                               << environment().at("DBUS_SYSTEM_BUS_ADDRESS")
                               << R"(</listen><policy context="default"><allow own="*"/>
      <allow user="*"/><allow send_destination="*"/><allow receive_sender="*"/>
      </policy></busconfig>)";
  systemBus_ = start({"dbus-daemon", "--nofork", "--nopidfile", "--print-address",
                      "--config-file=" + configuration.string()});
  require(systemBus_->waitForLine("^unix:").has_value(), "the system bus", *systemBus_);
}

void GnomeDesk::configure(const GnomeOptions& options) {
  const fs::path picture = home().home() / "dusk.png";
  harness::writePng(harness::dusk(kMonitorWidth, kMonitorHeight), picture);
  const auto set = [&](const char* schema, const char* key, const std::string& value) {
    mustRun({"gsettings", "set", schema, key, value});
  };
  for (const char* key : {"picture-uri", "picture-uri-dark"})
    set("org.gnome.desktop.background", key, quoted("file://" + picture.string()));
  if (options.icons)
    set("org.gnome.shell", "enabled-extensions", "[" + quoted(kIconsExtension) + "]");
  set("org.gnome.shell", "disable-extension-version-validation", "true");
  set("org.gnome.shell", "welcome-dialog-last-shown-version", quoted("99"));
}

void GnomeDesk::startShell(const GnomeOptions& options) {
  std::vector<std::string> argv{"gnome-shell", "--headless", "--no-x11", "--unsafe-mode",
                                "--wayland-display=wayland-gnome"};
  for (int i = 0; i < options.monitors; ++i) {
    argv.emplace_back("--virtual-monitor");
    argv.push_back(std::to_string(kMonitorWidth) + "x" + std::to_string(kMonitorHeight));
  }
  shell_ = start(argv);
  // It begins with the overview, and where that is hidden before it has come GNOME 48 waits for
  // ever.
  const auto isReady = [&] {
    return evaluate(
               "!Main.layoutManager._startingUp &&"
               "  (Main.overview.hide(), !Main.overview.visible)") == "true";
  };
  require(until(isReady, 3 * harness::kPatience), "GNOME Shell", *shell_);
  input_ = std::make_unique<Devices>(*this);
  // It warns of root, among others.
  const auto shows = [&] {
    (void)evaluate("Main.messageTray.getSources().forEach(source => source.destroy()); 0");
    return isBare() != options.icons;
  };
  require(until(shows, 3 * harness::kPatience), "its desktop", *shell_);
}

// --- The desktop ---

std::string GnomeDesk::evaluate(const std::string& script) {
  const auto answer = bus().call("org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell.Eval",
                                 {"string:" + script});
  std::smatch parts;
  if (!answer || !std::regex_match(*answer, parts, std::regex(R"(\s*boolean true\s+([^]*?)\s*)")))
    return {};
  return parts[1];
}

Image GnomeDesk::seen() {
  const fs::path file = home().runtime() / "seen.png";
  const auto answer = bus().call("org.gnome.Shell.Screenshot", "/org/gnome/Shell/Screenshot",
                                 "org.gnome.Shell.Screenshot.Screenshot",
                                 {"boolean:false", "boolean:false", "string:" + file.string()});
  if (!answer || answer->find("true") == std::string::npos) return {};
  const Image whole = harness::readPng(harness::textOf(file));
  return whole.part({0, kBar, whole.width, whole.height - kBar});
}

void GnomeDesk::setMonitors(int count) {
  const auto gdbus = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(),
                     {"gdbus", "call", "--session", "--dest", "org.gnome.Mutter.DisplayConfig",
                      "--object-path", "/org/gnome/Mutter/DisplayConfig", "--method"});
    return outputOf(std::move(arguments));
  };
  const std::string name = "org.gnome.Mutter.DisplayConfig.";
  const std::string state = gdbus({name + "GetCurrentState"});
  std::smatch serial;
  std::regex_search(state, serial, std::regex("uint32 (\\d+)"));
  const std::regex monitor(R"(\(\('(Meta-\d+)',[^)]*\), \[\('([^']+)')");
  std::string wanted;
  auto found = std::sregex_iterator(state.begin(), state.end(), monitor);
  for (int i = 0; i < count; ++i, ++found) {
    wanted += (i > 0 ? "," : "") + ("(" + std::to_string(i * kMonitorWidth)) + ",0,1.0,0," +
              (i == 0 ? "true" : "false") + ",[(" + quoted((*found)[1]) + "," +
              quoted((*found)[2]) + ",{})])";
  }
  (void)gdbus({name + "ApplyMonitorsConfig", serial[1], "1", "[" + wanted + "]", "{}"});
}

bool GnomeDesk::hasIcons(int monitor) {
  return evaluate(
             "global.display.list_all_windows().some(window => (window.title ?? '')"
             ".startsWith('@!" +
             std::to_string(monitor * kMonitorWidth) + ",'))") == "true";
}

void GnomeDesk::turnExtension(const std::string& uuid, bool on) {
  const std::string method = on ? "EnableExtension" : "DisableExtension";
  if (!bus().call("org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell.Extensions." + method,
                  {"string:" + uuid}))
    throw std::runtime_error(uuid + " cannot be turned on or off");
  if (uuid == kOurExtension) hasExtension_ = on;
}

void GnomeDesk::lock(bool isLocked) {
  (void)evaluate(std::string("Main.sessionMode.") + (isLocked ? "push" : "pop") +
                 "Mode('unlock-dialog'); 0");
  require(until([&] { return bus().hasOwner(kOurShell) != isLocked; }), "our extension", *shell_);
}

bool GnomeDesk::isTurnedOff(const std::string& uuid) const {
  return outputOf({"gsettings", "get", "org.gnome.shell", "disabled-extensions"}).find(uuid) !=
         std::string::npos;
}

// --- Programs ---

void GnomeDesk::launch(const std::vector<std::string>& features, const std::string& settings) {
  writeSettings(features, settings);
  program_ = start({CALMDECK_PROGRAM});
  const auto isOpen = [&] { return windows().find("Calmdeck*") != std::string::npos; };
  require(until(isOpen), "its panel", *program_);
  // A panel that has come before the button goes there, unless it has lost the keyboard meanwhile.
  require(!hasExtension_ || until([&] { return hasButton(); }), "its button", *program_);
  const auto isClosed = [&] {
    if (isOpen()) input().key("Escape");
    return windows().find("Calmdeck") == std::string::npos && home().isAtRest();
  };
  require(until(isClosed), "it", *program_);
}

void GnomeDesk::openWindow(const std::string& title, const std::string& colour) {
  programs_.push_back(start({FOREIGN_WINDOW, title, colour}));
  const auto isThere = [&] { return windows().ends_with(title + "*"); };
  require(until(isThere), "a window", *programs_.back());
}

std::string GnomeDesk::windows() {
  const std::string text = evaluate(
      "const icons = /^@!/;"
      "const all = global.display.list_all_windows().filter(window =>"
      "  !window.minimized && !icons.test(window.title ?? ''));"
      "global.display.sort_windows_by_stacking(all).map(window =>"
      "  window.title + (window.has_focus() ? '*' : '')).join(' ')");
  return text.size() < 2 ? text : text.substr(1, text.size() - 2);
}

}  // namespace gnome_test
