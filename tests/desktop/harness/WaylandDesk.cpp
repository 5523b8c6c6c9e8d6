#include "desktop/harness/WaylandDesk.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "desktop/harness/VirtualDevices.h"

namespace harness {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

constexpr const char* kStarted = "compositor-started";
constexpr int kBarThickness = 32;
constexpr std::uint32_t kBarColour = 0x303030;

// Started by the compositor once it is up: the only one that knows what others find it by.
void writeStartScript(const fs::path& script) {
  const std::string told = script.string() + ".told";
  std::ofstream(script) << "#!/bin/sh\nenv >" << told << ".new\nmv " << told << ".new " << told
                        << '\n';
  fs::permissions(script, fs::perms::owner_all | fs::perms::others_exec | fs::perms::others_read);
}

constexpr const char* kToldByCompositors[] = {"SWAYSOCK", "LABWC_PID"};

std::string swayConfiguration(const WaylandOptions& options, const fs::path& script) {
  std::ostringstream text;
  text << "xwayland " << (options.xwayland ? "enable" : "disable") << '\n';
  for (int i = 0; i < options.outputs; ++i) {
    text << "output HEADLESS-" << i + 1 << " position " << i * WaylandDesk::kOutputWidth << " 0\n";
  }
  text << options.configuration << "\nexec " << script.string() << '\n';
  return text.str();
}

/// sway refuses root, so that it becomes nobody there, but one who may use this desktop's folders.
std::vector<std::string> unprivileged(std::vector<std::string> argv) {
  if (::geteuid() != 0) return argv;
  const std::string rights = "+dac_override,+dac_read_search";
  const std::vector<std::string> change{
      "setpriv",        "--reuid=65534",        "--regid=65534",
      "--clear-groups", "--inh-caps=" + rights, "--ambient-caps=" + rights};
  argv.insert(argv.begin(), change.begin(), change.end());
  return argv;
}

/// Also where it shows one of the home's pictures: it looks whether that user may read it.
void letOthersThrough(const PrivateHome& home) {
  for (const fs::path& folder : {home.home(), home.home().parent_path()})
    fs::permissions(folder, fs::perms::others_exec, fs::perm_options::add);
}

/// A copy, without the capability by which the installed file cannot be run in a container.
fs::path copiedKwin(const fs::path& folder) {
  fs::path copy = folder / "kwin_wayland";
  fs::copy_file(HARNESS_KWIN, copy);
  return copy;
}

bool has(const std::vector<WaylandOutput>& outputs, const std::string& name) {
  return std::ranges::find(outputs, name, &WaylandOutput::name) != outputs.end();
}

/// Of what grim is told to look at.
Image taken(const Desk& desk, std::vector<std::string> of) {
  std::vector<std::string> argv{"grim", "-t", "png", "-l", "0"};
  std::ranges::move(of, std::back_inserter(argv));
  argv.emplace_back("-");
  return readPng(desk.outputOf(std::move(argv)));
}

/// What the compositor would show on its monitors, if it had any.
class GrimScreen final : public Screen {
 public:
  explicit GrimScreen(const Desk& desk) : Screen(desk.home()), desk_(desk) {}

  [[nodiscard]] Image whole() const override { return taken(desk_, {"-s", "1"}); }
  [[nodiscard]] Image area(const Rect& wanted) const override {
    return taken(desk_, {"-s", "1", "-g",
                         std::to_string(wanted.x) + "," + std::to_string(wanted.y) + " " +
                             std::to_string(wanted.width) + "x" + std::to_string(wanted.height)});
  }

 private:
  const Desk& desk_;
};

}  // namespace

std::string allInTheMiddle(Compositor compositor, const std::string& names) {
  switch (compositor) {
    case Compositor::Sway:
      return "for_window [app_id=\"" + names + "\"] floating enable\n";
    case Compositor::Labwc:
      return "<placement><policy>center</policy></placement>";
    case Compositor::Kwin:
      break;
  }
  return "Placement=Centered\n";
}

// --- Start ---

WaylandDesk::WaylandDesk(const WaylandOptions& options)
    : Desk(options.environment), kind_(options.compositor) {
  startBus();
  writeStartScript(home().runtime() / kStarted);
  Environment own;
  if (kind_ == Compositor::Kwin) {
    server_ = std::make_unique<XServer>(
        home().runtime(), environment(),
        std::vector<Rect>{{0, 0, options.outputs * kOutputWidth, kOutputHeight}}, 24);
    x_ = std::make_unique<XConnection>(server_->display());
    own = {{"DISPLAY", server_->display()}, {"KWIN_COMPOSE", "Q"}};
  } else {
    own = {{"WLR_BACKENDS", "headless"},
           {"WLR_RENDERER", "pixman"},
           {"WLR_HEADLESS_OUTPUTS", std::to_string(options.outputs)},
           {"WLR_LIBINPUT_NO_DEVICES", "1"}};
  }
  setEnvironment("XDG_SESSION_TYPE", "wayland");
  compositor_ = start(command(options), own);
  takeEnvironment(options);
  connect(options.outputs);
  // Which one windows open on differs from version to version.
  if (kind_ == Compositor::Sway)
    (void)run({"swaymsg", "mouse_warping none, focus output HEADLESS-1, mouse_warping output"});
  if (options.sound) startSound(*options.sound);
  if (options.bar) startBar();
}

WaylandDesk::~WaylandDesk() = default;

std::vector<std::string> WaylandDesk::command(const WaylandOptions& options) const {
  const fs::path script = home().runtime() / kStarted;
  // Windows stand beside each other everywhere, as long as there is room.
  switch (kind_) {
    case Compositor::Sway:
      letOthersThrough(home());
      home().writeConfig("sway/config", swayConfiguration(options, script));
      return unprivileged({"sway", "-c", home().config() / "sway/config"});
    case Compositor::Labwc:
      home().writeConfig("labwc/rc.xml",
                         "<labwc_config><placement><policy>automatic</policy></placement>" +
                             options.configuration + "</labwc_config>");
      return {"labwc", "-s", script};
    case Compositor::Kwin:
      break;
  }
  home().writeConfig("kwinrc", "[Windows]\nPlacement=Smart\n" + options.configuration);
  std::vector<std::string> argv{copiedKwin(home().runtime()),
                                "--x11-display=" + server_->display(),
                                "--width=" + std::to_string(kOutputWidth),
                                "--height=" + std::to_string(kOutputHeight),
                                "--output-count=" + std::to_string(options.outputs),
                                "--no-lockscreen",
                                script};
  if (options.xwayland) argv.insert(argv.begin() + 1, "--xwayland");
  return argv;
}

void WaylandDesk::takeEnvironment(const WaylandOptions& options) {
  const fs::path told = home().runtime() / (std::string(kStarted) + ".told");
  require(until([&] { return fs::exists(told); }), "the compositor", *compositor_);
  Environment own;
  std::istringstream lines(textOf(told));
  for (std::string line; std::getline(lines, line);)
    own[line.substr(0, line.find('='))] = line.substr(line.find('=') + 1);
  for (const char* name : kToldByCompositors)
    if (own.contains(name)) setEnvironment(name, own.at(name));
  // Whole, so that also one finds it who is given another folder.
  setEnvironment("WAYLAND_DISPLAY", home().runtime() / own.at("WAYLAND_DISPLAY"));
  if (options.xwayland) setEnvironment("DISPLAY", own.at("DISPLAY"));
  const char* const desktops[] = {"sway", "labwc:wlroots", "KDE"};
  setEnvironment("XDG_CURRENT_DESKTOP", desktops[static_cast<std::size_t>(kind_)]);
  // Also those that the bus starts belong to this desktop.
  mustRun({"dbus-update-activation-environment", "WAYLAND_DISPLAY", "SWAYSOCK", "LABWC_PID",
           "XDG_CURRENT_DESKTOP", "XDG_SESSION_TYPE"});
}

void WaylandDesk::connect(int outputs) {
  const std::string socket = environment().at("WAYLAND_DISPLAY");
  client_ = std::make_unique<WaylandClient>(socket);
  const auto complete = [&] { return std::ssize(client_->outputs()) == outputs; };
  require(until(complete), "every monitor", *compositor_);
  if (kind_ == Compositor::Kwin) {
    spreadHostWindows();
    screen_ = std::make_unique<XScreen>(home(), *x_);
    input_ = std::make_unique<XInput>(*x_);
  } else {
    screen_ = std::make_unique<GrimScreen>(*this);
    input_ = std::make_unique<VirtualDevices>(socket);
  }
}

// They come in the order of the monitors, each over the one before.
void WaylandDesk::spreadHostWindows() {
  const XReply<xcb_query_tree_reply_t> tree(
      xcb_query_tree_reply(x_->get(), xcb_query_tree(x_->get(), x_->root()), nullptr));
  if (!tree) throw std::runtime_error("the monitors' windows cannot be listed");
  int x = 0;
  for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
    const xcb_window_t window = xcb_query_tree_children(tree.get())[i];
    if (x_->text(window, "WM_NAME").empty() && x_->text(window, "_NET_WM_NAME").empty()) continue;
    const std::uint32_t place[] = {static_cast<std::uint32_t>(x), 0};
    xcb_configure_window(x_->get(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, place);
    x += kOutputWidth;
  }
  xcb_flush(x_->get());
}

// --- Monitors ---

bool WaylandDesk::configureOutput(const std::string& output, const std::string& wanted,
                                  const std::vector<std::string>& forLabwc,
                                  const std::function<bool()>& isSo) {
  std::vector<std::string> argv;
  switch (kind_) {
    case Compositor::Sway:
      argv = {"swaymsg", "output " + output + " " + wanted};
      break;
    case Compositor::Labwc:
      argv = {"wlr-randr", "--output", output};
      argv.insert(argv.end(), forLabwc.begin(), forLabwc.end());
      break;
    case Compositor::Kwin:
      argv = {"kscreen-doctor", "output." + output + "." + wanted};
      std::ranges::replace(argv.back(), ' ', '.');
      break;
  }
  const RunResult asked = run(std::move(argv));
  return asked.succeeded() && until(isSo, 10s);
}

Image WaylandDesk::pixelsOf(const WaylandOutput& output) const {
  if (kind_ == Compositor::Kwin) {
    const auto all = client_->outputs();
    const auto place = std::ranges::find(all, output) - all.begin();
    const int left = static_cast<int>(place) * kOutputWidth;
    return screen_->area({left, 0, kOutputWidth, kOutputHeight});
  }
  return taken(*this, {"-o", output.name});
}

bool WaylandDesk::turnOff(const std::string& output) {
  // Its wlroots has no such thing, and it says yes.
  if (kind_ == Compositor::Sway &&
      run({"sway", "--version"}).output.find("1.7") != std::string::npos)
    return false;
  return configureOutput(output, "disable", {"--off"}, [&] { return !has(outputs(), output); });
}

void WaylandDesk::turnOn(const std::string& output) {
  if (!configureOutput(output, "enable", {"--on"}, [&] { return has(outputs(), output); }))
    throw std::runtime_error(output + " stays off");
}

void WaylandDesk::scale(const std::string& output, double factor) {
  std::ostringstream text;
  text << factor;
  const int width = static_cast<int>(std::lround(kOutputWidth / factor));
  const auto isSo = [&] {
    return std::ranges::any_of(outputs(), [&](const WaylandOutput& one) {
      return one.name == output && std::abs(one.area.width - width) <= 1;
    });
  };
  if (!configureOutput(output, "scale " + text.str(), {"--scale", text.str()}, isSo))
    throw std::runtime_error(output + " is not scaled");
}

std::pair<pid_t, std::string> WaylandDesk::swaysSwaybg() const {
  for (const pid_t process : home().processes()) {
    const fs::path told = fs::path("/proc") / std::to_string(process);
    const std::string words = textOf(told / "cmdline");
    if (words.starts_with("swaybg") &&
        textOf(told / "environ").find("WAYLAND_SOCKET=") != std::string::npos)
      return {process, words};
  }
  return {};
}

void WaylandDesk::reload() {
  switch (kind_) {
    case Compositor::Sway:
      mustRun({"swaymsg", "reload"});
      break;
    case Compositor::Labwc:
      compositor_->signal(SIGHUP);
      break;
    case Compositor::Kwin:
      mustRun({"dbus-send", "--print-reply", "--dest=org.kde.KWin", "/KWin",
               "org.kde.KWin.reconfigure"});
  }
}

// --- Programs ---

void WaylandDesk::startBar(std::size_t output, Edge edge) {
  if (bar_) {
    bar_.reset();
    // A screen without viewers is drawn once a second by some servers.
    const int x = barArea_.x + barArea_.width / 2;
    const int y = barArea_.y + barArea_.height / 2;
    const bool isGone = until([&] { return screen_->pixel(x, y) != kBarColour; });
    if (!isGone) throw std::runtime_error("the bar before stays on the screen");
  }
  const WaylandOutput place = outputs().at(output);
  home().writeConfig("waybar/config", filled(textOf(HARNESS_FOLDER "/panels/waybar.json"),
                                             {{"monitor", place.name},
                                              {"edge", edge == Edge::Top ? "top" : "bottom"}}));
  home().writeConfig("waybar/style.css", "window#waybar { background: #303030; }\n");
  barArea_ = {place.area.x, edge == Edge::Top ? 0 : kOutputHeight - kBarThickness, kOutputWidth,
              kBarThickness};
  const Image bare = screen_->area(barArea_);
  bar_ = start({"waybar"});
  const auto standing = [&] { return screen_->area(barArea_) != bare; };
  require(until(standing) && until([&] { return bus().hasTrayHost(); }), "waybar", *bar_);
  (void)screen_->settled(barArea_, 200ms);
}

std::vector<Rect> WaylandDesk::panelAreas() const {
  return bar_ ? std::vector{barArea_} : std::vector<Rect>{};
}

void WaylandDesk::useLayouts(const std::string& layouts, std::uint32_t inEffect) {
  dynamic_cast<VirtualDevices&>(*input_).useLayouts(layouts, inEffect);
}

ForeignWindow& WaylandDesk::openWindow(const std::string& name, std::uint32_t colour, int count) {
  std::ostringstream text;
  text << '#' << std::hex << std::setw(6) << std::setfill('0') << colour;
  windows_.push_back(std::make_unique<ForeignWindow>(
      ForeignWindow{colour, start({FOREIGN_WINDOW, name, text.str(), std::to_string(count)})}));
  const bool shows = until([&] { return areaOf(colour).has_value(); });
  require(shows, "a foreign window", *windows_.back()->process);
  return *windows_.back();
}

void WaylandDesk::clickOn(const ForeignWindow& window) const {
  const std::optional<Rect> area = areaOf(window.colour);
  // Not in the middle, where compositors put the pointer.
  const int x = area ? area->x + area->width / 3 : 0;
  const int y = area ? area->y + area->height / 3 : 0;
  if (!area || screen_->pixel(x, y) != window.colour)
    throw std::runtime_error("the window is not to be seen");
  input_->click(x, y);
}

std::optional<Rect> WaylandDesk::areaOf(std::uint32_t colour) const {
  const Image all = screen_->whole();
  Image without = all;
  std::ranges::replace(without.pixels, colour, ~colour);
  return changedArea(all, without);
}

}  // namespace harness
