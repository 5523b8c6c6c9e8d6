// The whole mode on shells that paint the background themselves.

#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <stdexcept>

#include "desktop/harness/ShortcutProgram.h"

using harness::Image;
using harness::Rect;
namespace fs = std::filesystem;

namespace {

/// A shell that paints the background itself, beside programs with icons, and that shows
/// notifications.
struct Shell {
  const char* name;
  const char* currentDesktop;
  /// What the shell owns on the bus when its windows can come.
  const char* busName;
  std::vector<std::vector<std::string>> programs;
  /// As gsettings takes them: schema, key, value; "{home}" is the home folder.
  std::vector<std::vector<std::string>> settings;
  /// What the mode may change there, as dconf names it.
  const char* backgrounds;
  bool hasIcons = true;
  /// Whether what shows its notifications has a Do Not Disturb.
  bool canBeQuiet = true;
};

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

/// What a test runner lists the case under.
void PrintTo(const Shell& row, std::ostream* stream) {
  *stream << row.name;
}

/// One of these with two monitors, icons and a window on each, and the program, told to do all that
/// it can. Judged by what is on the screen.
class ShellDesk {
 public:
  explicit ShellDesk(const Shell& shell)
      : desk({.sound = harness::SoundServerKind::PulseAudio,
              .environment = {{"XDG_CURRENT_DESKTOP", shell.currentDesktop},
                              {"XDG_SESSION_TYPE", "x11"}}}),
        shell_(shell) {
    harness::furnish(desk.home());
    keepOthersFromStarting();
    for (const auto& setting : shell.settings) set(setting);
  }

  /// Before that: an override of a schema of the machine's, as packages bring it.
  void install(const std::string& schema, const fs::path& override) {
    const fs::path folder = desk.home().home() / ".local/share/glib-2.0/schemas";
    fs::create_directories(folder);
    fs::copy_file("/usr/share/glib-2.0/schemas/" + schema, folder / schema);
    fs::copy_file(override, folder / override.filename());
    desk.mustRun({"glib-compile-schemas", "--strict", folder});
  }
  /// Starts the shell, and the program once it shows the wallpaper and the icons on it.
  [[nodiscard]] bool start() {
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
  void press() { program_->press(); }

  /// They start, paint and fade late where nothing helps them to draw.
  [[nodiscard]] bool until(const std::function<bool()>& fact) const {
    return desk.until(fact, 4 * harness::kPatience);
  }
  /// Waits until nothing but the chosen picture is to be seen, on each monitor, beside the panel,
  /// and the sound is off.
  [[nodiscard]] bool inTheMode() {
    const auto showsThePictureOnly = [](const Image& image) {
      return harness::isOf(harness::meadow, image.at(image.width / 2, image.height / 2)) &&
             !harness::showsIcons(image);
    };
    return until([&] {
      return std::ranges::all_of(seen(), showsThePictureOnly) && desk.sound().sinkMuted("out1");
    });
  }
  /// What each monitor shows, without the panel, whose clock goes on.
  [[nodiscard]] std::vector<Image> seen() const { return partsOf(desk.screen().whole()); }
  /// The same at rest, with the pointer out of the way.
  [[nodiscard]] std::vector<Image> photograph() {
    desk.input().moveTo(2200, 500);
    return partsOf(desk.settled(std::chrono::milliseconds(800)));
  }
  [[nodiscard]] std::string backgrounds() const {
    return desk.run({"dconf", "dump", shell_.backgrounds}).output;
  }

  harness::XDesk desk;

 private:
  /// Panels are at the top and at the bottom of the first monitor.
  [[nodiscard]] std::vector<Image> partsOf(const Image& whole) const {
    constexpr int kThickestPanel = 48;
    std::vector<Rect> monitors = desk.server().monitors();
    monitors.front().y += kThickestPanel;
    monitors.front().height -= 2 * kThickestPanel;
    std::vector<Image> parts;
    parts.reserve(monitors.size());
    for (const Rect& monitor : monitors) parts.push_back(whole.part(monitor));
    return parts;
  }
  void set(std::vector<std::string> setting) {
    for (std::string& word : setting) word = harness::filled(word, {{"home", desk.home().home()}});
    setting.insert(setting.begin(), {"gsettings", "set"});
    desk.mustRun(setting);
  }
  /// What a session starts beside its own needs services of the machine.
  void keepOthersFromStarting() {
    for (const auto& entry : fs::directory_iterator("/etc/xdg/autostart")) {
      const std::string name = entry.path().filename();
      const bool isNeeded = name.find("background") != std::string::npos ||
                            name.find("xsettings") != std::string::npos || name.starts_with("nemo");
      if (!isNeeded) desk.home().writeConfig("autostart/" + name, "[Desktop Entry]\nHidden=true\n");
    }
  }
  /// It only has to be there: nobody is on it.
  void startSystemBus() {
    programs_.push_back(
        desk.start({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address",
                    "--address=" + desk.environment().at("DBUS_SYSTEM_BUS_ADDRESS")}));
    if (!programs_.back()->waitForLine("^unix:")) throw std::runtime_error("no system bus");
  }

  const Shell& shell_;
  std::vector<std::unique_ptr<harness::Process>> programs_;
  std::optional<harness::ShortcutProgram> program_;
};

class ShellTest : public testing::TestWithParam<Shell> {
 protected:
  void SetUp() override { ASSERT_TRUE(shell.start()); }
  ShellDesk shell{GetParam()};
};

Shell withoutIcons() {
  Shell shell = kCinnamon;
  shell.name = "CinnamonWithoutIcons";
  shell.hasIcons = false;
  shell.settings.push_back({"org.nemo.desktop", "desktop-layout", "false::false"});
  return shell;
}

INSTANTIATE_TEST_SUITE_P(On, ShellTest, testing::Values(INSTALLED_SHELLS),
                         [](const auto& row) { return row.param.name; });

TEST_P(ShellTest, AllFiveComeAndGoAndTheScreenIsAsBefore) {
  const std::vector<Image> before = shell.photograph();
  const std::string backgrounds = shell.backgrounds();

  shell.press();
  ASSERT_TRUE(shell.inTheMode());
  if (GetParam().canBeQuiet) {
    shell.desk.notify("A letter");
    (void)shell.photograph();
    EXPECT_TRUE(shell.inTheMode()) << "a notification is kept back";
  }

  shell.press();
  EXPECT_TRUE(shell.until([&] { return shell.photograph() == before; }));
  EXPECT_EQ(shell.backgrounds(), backgrounds);
  shell.desk.notify("A letter");
  EXPECT_TRUE(shell.until([&] { return shell.seen() != before; })) << "shown after the mode";
}

class ShellWithIcons : public ShellTest {};

INSTANTIATE_TEST_SUITE_P(On, ShellWithIcons, testing::Values(SHELLS_WITH_ICONS),
                         [](const auto& row) { return row.param.name; });

TEST_P(ShellWithIcons, IconsOfAnotherMonitorAreCoveredAsItComes) {
  shell.press();
  ASSERT_TRUE(shell.inTheMode());
  const std::vector<Rect> both = shell.desk.server().monitors();
  for (const std::vector<Rect>& monitors : {std::vector{both.front()}, both}) {
    shell.desk.server().setMonitors(monitors);
    (void)shell.photograph();
    EXPECT_TRUE(shell.inTheMode()) << monitors.size();
  }
}

#ifdef CALMDECK_OVERRIDE
TEST(NemoTest, StartsAnewUnderTheCovers) {
  ShellDesk shell(kCinnamon);
  shell.install("org.nemo.gschema.xml", CALMDECK_OVERRIDE);
  ASSERT_TRUE(shell.start());
  shell.press();
  ASSERT_TRUE(shell.inTheMode());
  const auto windows = shell.desk.iconWindows();
  const auto process = shell.desk.x().number(windows.at(0).id, "_NET_WM_PID").value();
  ::kill(static_cast<pid_t>(process), SIGKILL);
  ASSERT_TRUE(shell.until([&] { return shell.desk.iconWindows().empty(); }));
  // Its session does that.
  ASSERT_TRUE(shell.until([&] { return shell.desk.iconWindows().size() == windows.size(); }));
  (void)shell.photograph();
  EXPECT_TRUE(shell.inTheMode());
}
#endif

}  // namespace

/// nemo-desktop refuses to run as root, so root becomes nobody in a name space of its own.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const uid_t user = geteuid();
  const gid_t group = getegid();
  if (user == 0 && unshare(CLONE_NEWUSER) == 0) {
    constexpr int kNobody = 65534;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/gid_map") << kNobody << ' ' << group << " 1";
    std::ofstream("/proc/self/uid_map") << kNobody << ' ' << user << " 1";
  }
  return RUN_ALL_TESTS();
}
