// The whole mode, by real clicks on real desktops.

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <ostream>
#include <set>

#include "desktop/harness/DesktopConfiguration.h"
#include "desktop/program/ProgramDesk.h"

using harness::Image;
using harness::Rect;
using harness::WindowInfo;

namespace {

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
void PrintTo(const FullDesktop& row, std::ostream* stream) {
  *stream << row.name;
}

constexpr std::array kFullDesktops{
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
  explicit ModeDesk(const FullDesktop& kind)
      : ProgramDesk({.windowManager = kind.windowManager,
                     .panel = kind.panel,
                     .notifications = kind.notifications,
                     .sound = kind.sound}),
        kind_(kind) {
    const std::filesystem::path home = desk.home().home();
    harness::furnish(desk.home());
    desk.writeSettings(harness::kAllFeatures, harness::chosenPicture(home / "meadow.png"));
    const harness::MonitorBackdrop picture{.picture = home / "dusk.png"};
    harness::configureIcons(desk, kind_.icons, {picture, picture});
    desk.startIcons(kind_.icons);
  }

  /// Two windows on the first monitor, one on the second, one on another workspace, and one that
  /// the user has minimised.
  [[nodiscard]] bool openWindows() {
    constexpr std::uint32_t kIconicState = 3;
    constexpr std::uint32_t kOtherWorkspace = 1;
    const harness::XConnection& x = desk.x();
    shown_.push_back(desk.openWindow("Figures", {160, 90, 480, 260}));
    shown_.push_back(desk.openWindow("Elsewhere", {300, 350, 300, 160}));
    shown_.push_back(desk.openWindow("Second monitor", {1500, 150, 400, 220}));
    const xcb_window_t putAway = desk.openWindow("Put away", {700, 400, 300, 160}).id;
    shown_.push_back(desk.openWindow("Letter", {520, 260, 420, 220}));
    const xcb_window_t elsewhere = shown_[1].id;
    x.askWindowManager(elsewhere, "_NET_WM_DESKTOP", {kOtherWorkspace, 2});
    x.askWindowManager(putAway, "WM_CHANGE_STATE", {kIconicState});
    const bool areArranged = desk.until([&] {
      return x.number(elsewhere, "_NET_WM_DESKTOP") == kOtherWorkspace &&
             desk.windows().info(putAway)->has("HIDDEN");
    }) && desk.activate(shown_.back().id);
    (void)photograph();
    return areArranged;
  }
  /// Starts the program, for the first time or anew; its panel is closed then.
  [[nodiscard]] bool startClosed() {
    const bool isReady = start() && close();
    (void)photograph();
    return isReady;
  }
  /// Clicks on the icon where the panel is closed, then on the switch.
  [[nodiscard]] bool turn(const std::string& name) {
    return (desk.openPopover() || (clickIcon() && opens())) && click(name);
  }
  [[nodiscard]] bool turnMaster() { return turn(kMaster); }

  // Each waits until the effect is there, or is not.
  [[nodiscard]] bool quiet(bool quiet) {
    return desk.until(
        [&] { return harness::doNotDisturb(desk, kind_.notifications).value_or(false) == quiet; });
  }
  [[nodiscard]] bool othersHidden(bool hidden) {
    const auto asWanted = [&](const WindowInfo& window) {
      const auto now = desk.windows().info(window.id);
      return now && now->has("HIDDEN") == hidden;
    };
    return desk.until([&] { return std::ranges::all_of(shown_, asWanted); });
  }
  [[nodiscard]] bool showsChosenPicture(bool chosen) {
    const auto asWanted = [&](const Rect& monitor) {
      // Beside the windows.
      const std::uint32_t pixel = desk.screen().pixel(monitor.right() - 60, monitor.centreY());
      return harness::isOf(harness::meadow, pixel) == chosen;
    };
    return desk.until([&] { return std::ranges::all_of(desk.server().monitors(), asWanted); });
  }
  /// All five.
  void expectTheMode(bool on) {
    ASSERT_TRUE(sinkMuted(on));
    ASSERT_TRUE(quiet(on));
    ASSERT_TRUE(othersHidden(on));
    ASSERT_TRUE(showsChosenPicture(on));
    ASSERT_TRUE(covered(on));
  }
  /// Nothing with an edge is to be seen on any monitor but in `apart` and the panel.
  [[nodiscard]] bool bare(const std::vector<Rect>& apart = {}) {
    const auto isBare = [&](const Rect& monitor) { return this->isBare(monitor, apart); };
    return desk.until([&] { return std::ranges::all_of(desk.server().monitors(), isBare); });
  }

  /// The user's windows, for people to compare: which is active, which are to be seen, bottom to
  /// top, and of each where it is.
  [[nodiscard]] std::string windowsNow() {
    const harness::WindowList& windows = desk.windows();
    std::string seen;
    std::set<std::string> hidden;
    for (const xcb_window_t id : windows.stacking()) {
      const auto window = windows.info(id);
      if (!window || !window->managed || window->className != "Xmessage") continue;
      const std::string line = window->name + " on " +
                               std::to_string(desk.x().number(id, "_NET_WM_DESKTOP").value_or(99));
      const Rect& area = window->area;
      if (window->has("HIDDEN")) {
        hidden.insert(line + " hidden\n");
      } else {
        seen += line + " at " + std::to_string(area.x) + "," + std::to_string(area.y) +
                (windows.active() == id ? " active\n" : "\n");
      }
    }
    return std::accumulate(hidden.begin(), hidden.end(), seen);
  }
  [[nodiscard]] std::string backdropSettings() {
    return harness::backdropSettings(desk, kind_.icons);
  }
  /// Each monitor at rest, with the pointer where nothing ever stands, nor lights up under it.
  [[nodiscard]] std::vector<Image> photograph() {
    desk.input().moveTo(2200, 500);
    return desk.settledMonitors();
  }

 private:
  [[nodiscard]] bool isBare(const Rect& monitor, std::vector<Rect> apart) {
    for (const Rect& panel : desk.panelAreas()) apart.push_back(panel);
    for (Rect& area : apart) {
      constexpr int kFrame = 60;  // frames and shadows, and what a panel casts
      area = {area.x - kFrame - monitor.x, area.y - kFrame - monitor.y, area.width + 2 * kFrame,
              area.height + 2 * kFrame};
    }
    return !harness::showsIcons(desk.screen().area(monitor), apart);
  }

  const FullDesktop kind_;
  std::vector<WindowInfo> shown_;
};

/// With windows, and the program with its panel closed.
class ModeTest : public testing::TestWithParam<FullDesktop>, public ModeDesk {
 protected:
  ModeTest() : ModeDesk(GetParam()) {}
  void SetUp() override {
    ASSERT_TRUE(openWindows());
    ASSERT_TRUE(startClosed());
    windows = windowsNow();
  }
  void turnMode(bool on) {
    ASSERT_TRUE(turnMaster());
    ASSERT_NO_FATAL_FAILURE(expectTheMode(on));
    ASSERT_TRUE(close());
  }
  void expectTheWindows() {
    EXPECT_TRUE(desk.until([&] { return windowsNow() == windows; }));
    EXPECT_EQ(windowsNow(), windows);
  }

  std::string windows;
};

INSTANTIATE_TEST_SUITE_P(On, ModeTest, testing::ValuesIn(kFullDesktops),
                         [](const auto& row) { return row.param.name; });

TEST_P(ModeTest, OneClickAppliesEverythingAndAnotherTakesItBack) {
  const std::vector<Image> screen = photograph();
  const std::string settings = backdropSettings();
  const Rect icon = desk.trayIcon().value();
  const Image off = desk.screen().area(icon);
  ASSERT_NO_FATAL_FAILURE(expectTheMode(false));

  ASSERT_NO_FATAL_FAILURE(turnMode(true));
  EXPECT_TRUE(bare());
  EXPECT_NE(backdropSettings(), settings);
  const Image covered = photograph().front();
  EXPECT_TRUE(desk.screen().area(icon) != off) << "the icon is another";

  const WindowInfo slides = desk.openWindow("Slides", {400, 200, 400, 250});
  const auto changed = changedArea(covered, photograph().front());
  ASSERT_TRUE(changed);
  EXPECT_TRUE(changed->contains(slides.area)) << "a window that opens now is above the cover";
  EXPECT_TRUE(bare({slides.area}));
  desk.windows().close(slides.id);
  ASSERT_TRUE(desk.until([&] { return !desk.windows().info(slides.id); }));

  ASSERT_NO_FATAL_FAILURE(turnMode(false));
  expectTheWindows();
  EXPECT_EQ(backdropSettings(), settings);
  EXPECT_TRUE(photograph() == screen) << "the icon too";
  EXPECT_THAT(complaints(""), testing::IsEmpty());
  EXPECT_THAT(program->errorOutput(),
              testing::Not(testing::ContainsRegex("Q[A-Z][A-Za-z]+::[a-z]")))
      << "Qt was used wrongly";
}

// However the program ends while the mode is on, what it did to the desktop stays.
TEST_P(ModeTest, AnEndLeavesTheEffectsAndTheNextOneShowsWhatWasHidden) {
  ASSERT_NO_FATAL_FAILURE(turnMode(true));
  const std::string settings = backdropSettings();
  if (GetParam().isKilled) {
    program->kill();
  } else {
    ASSERT_TRUE(openMenu() && quits());
  }
  EXPECT_TRUE(covered(false));
  (void)photograph();
  EXPECT_TRUE(sinkMuted(true));
  EXPECT_TRUE(quiet(true));
  EXPECT_TRUE(othersHidden(true));
  EXPECT_TRUE(showsChosenPicture(true));
  EXPECT_EQ(backdropSettings(), settings);

  ASSERT_TRUE(startClosed());
  ASSERT_NO_FATAL_FAILURE(turnMode(true));
  ASSERT_TRUE(turnMaster());
  EXPECT_TRUE(covered(false));
  EXPECT_TRUE(sinkMuted(false));
  EXPECT_TRUE(quiet(false));
  EXPECT_TRUE(othersHidden(false));
  ASSERT_TRUE(close());
  expectTheWindows();
}

TEST(ModeOnTheBareRoot, CoversShowWhatTheRootWindowShows) {
  ModeDesk mode(kFullDesktops.back());
  const harness::XDesk& desk = mode.desk;
  ASSERT_TRUE(mode.startClosed());
  const Rect second = desk.server().monitors().back();
  const Image before = desk.screen().area(second);
  ASSERT_TRUE(mode.turnMaster());
  ASSERT_NO_FATAL_FAILURE(mode.expectTheMode(true));
  constexpr std::uint32_t kUsers = 0xc02020;
  desk.mustRun({"hsetroot", "-solid", "#c02020"});
  EXPECT_TRUE(desk.until([&] {
    return desk.screen().pixel(second.centreX(), second.centreY()) == kUsers;
  })) << "what the user sets while the mode is on";
  ASSERT_TRUE(mode.turnMaster());
  ASSERT_NO_FATAL_FAILURE(mode.expectTheMode(false));
  EXPECT_EQ(desk.screen().area(second), before);

  ASSERT_TRUE(mode.turn("Change wallpaper"));
  ASSERT_TRUE(mode.turnMaster());
  ASSERT_TRUE(mode.covered(true));
  ASSERT_TRUE(mode.close());
  EXPECT_EQ(mode.photograph().back(), before) << "the icons alone, after a whole round";
}

}  // namespace
