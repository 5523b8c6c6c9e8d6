// The real program beside a whole Plasma.

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "desktop/wayland/ModeDesk.h"

using harness::Compositor;
using harness::Image;
using harness::Rect;
using namespace std::chrono_literals;

namespace {

constexpr const char* kShell = "org.kde.plasmashell";
constexpr std::uint32_t kBlue = 0x2040c0;
/// It takes its time where nothing helps it to draw.
constexpr auto kLong = 60s;
/// Where the desktop's first icon is, and where neither an icon nor a panel is.
constexpr Rect kIcon{0, 0, 120, 120};
constexpr Rect kFree{400, 200, 400, 300};
/// Of the desktop's bar, where nothing is on it, of what a bar twice as high has above that, and
/// of what is above both.
constexpr Rect kBar{980, 685, 60, 30};
constexpr Rect kHighBar{980, 640, 60, 30};
constexpr Rect kAboveBar{980, 560, 60, 60};
/// Without the bar, which has a clock.
constexpr Rect kAll{0, 0, 2 * harness::WaylandDesk::kOutputWidth, 600};
/// The button at its end that has the desktop shown.
constexpr Rect kPeek{1240, 690, 24, 16};

/// An icon on the first monitor, and the picture of a dusk on both.
class PlasmaTest : public testing::Test, public wayland_test::ModeDesk {
 protected:
  PlasmaTest()
      : ModeDesk({.compositor = Compositor::Kwin,
                  // KWin 6 would put the first window over the icon.
                  .configuration = harness::allInTheMiddle(Compositor::Kwin, ""),
                  .environment = {{"KDE_FULL_SESSION", "true"},
                                  {"KDE_SESSION_VERSION", KDE_SESSION},
                                  {"XDG_MENU_PREFIX", KDE_MENU_PREFIX},
                                  {"QT_QUICK_BACKEND", "software"}}}) {
    std::filesystem::create_directories(desk.home().home() / "Desktop");
    std::ofstream(desk.home().home() / "Desktop/Salaries.txt") << "all\n";
    for (const char* service : {KDE_SERVICES, KDE_ACTIVITIES})
      services_.push_back(desk.start({service}, kNative));
    // Without it the shell shows nothing.
    EXPECT_TRUE(desk.until([&] { return desk.bus().hasOwner("org.kde.ActivityManager"); }, kLong));
    startShell();
    setPicture();
    EXPECT_TRUE(desk.until([&] { return desk.bus().hasTrayHost() && showsIcon(); }, kLong));
    // One picture fades into the other.
    (void)desk.screen().settled(kAll, 3s, kLong);
    EXPECT_TRUE(isDusk(0) && isDusk(1));
  }

  void startShell() {
    shell = desk.start({"plasmashell"}, kNative);
    EXPECT_TRUE(desk.until([&] { return desk.bus().hasOwner(kShell); }, kLong));
  }
  [[nodiscard]] bool runScript(const std::string& script) {
    return desk.bus()
        .call(kShell, "/PlasmaShell", "org.kde.PlasmaShell.evaluateScript", {"string:" + script})
        .has_value();
  }
  /// As the tray tells of it, at a place in the bar.
  [[nodiscard]] bool clickIcon() {
    const auto item = desk.bus().trayItem();
    return item && desk.bus().call(item->first, item->second, "org.kde.StatusNotifierItem.Activate",
                                   {"int32:1060", "int32:700"});
  }
  void peek() { desk.input().click(kPeek.centreX(), kPeek.centreY()); }
  [[nodiscard]] bool showsIcon() { return harness::showsIcons(desk.screen().area(kIcon)); }
  [[nodiscard]] Image seen(int output) {
    Rect place = kFree;
    place.x += output * harness::WaylandDesk::kOutputWidth;
    return desk.screen().area(place);
  }
  [[nodiscard]] bool isDusk(int output) {
    const Image now = seen(output);
    const Image whole =
        harness::dusk(harness::WaylandDesk::kOutputWidth, harness::WaylandDesk::kOutputHeight);
    return harness::alike(now.at(9, 9), whole.at(kFree.x + 9, kFree.y + 9));
  }

  std::unique_ptr<harness::Process> shell;

 private:
  static inline const harness::Environment kNative{{"QT_QPA_PLATFORM", "wayland"}};

  void setPicture() {
    const std::filesystem::path file = desk.home().home() / "dusk.png";
    harness::writePng(
        harness::dusk(harness::WaylandDesk::kOutputWidth, harness::WaylandDesk::kOutputHeight),
        file);
    const std::string script =
        "desktops().forEach(d => { d.wallpaperPlugin = 'org.kde.image';"
        " d.currentConfigGroup = ['Wallpaper', 'org.kde.image', 'General'];"
        " d.writeConfig('Image', 'file://" +
        file.string() + "'); })";
    const auto isSet = [&] {
      return runScript(script) && desk.until([&] { return isDusk(0) && isDusk(1); }, 5s);
    };
    EXPECT_TRUE(desk.until(isSet, kLong));
  }

  std::vector<std::unique_ptr<harness::Process>> services_;
};

TEST_F(PlasmaTest, IconsStayCoveredWhenTheDesktopIsShownAndWhenItsShellIsKilledAndStartedAnew) {
  const harness::ForeignWindow& window = desk.openWindow("slides", 0xc02030);
  const auto showsWindow = [&] { return desk.areaOf(window.colour).has_value(); };
  const Image above = desk.screen().area(kAboveBar);
  const auto showsPanel = [&] { return desk.screen().area(kAboveBar) != above; };
  launch("DesktopIcons");
  ASSERT_TRUE(desk.until(showsPanel, kLong)) << "it opens by itself";
  desk.input().key("Escape");
  ASSERT_TRUE(desk.until([&] { return !showsPanel(); }));
  desk.toggleMode();
  ASSERT_TRUE(desk.until([&] { return !showsIcon(); }));
  EXPECT_TRUE(desk.until([&] { return isDusk(0) && isDusk(1); }))
      << "by the picture that it shows; " << program->errorOutput();
  peek();
  ASSERT_TRUE(desk.until([&] { return !showsWindow(); }, kLong));
  EXPECT_FALSE(harness::showsIcons(desk.screen().settled(kIcon, 500ms)));
  peek();
  EXPECT_TRUE(desk.until(showsWindow, kLong));
  const Image bar = desk.screen().area(kBar);
  shell->kill();
  ASSERT_TRUE(desk.until([&] { return desk.screen().area(kBar) != bar; }));
  EXPECT_FALSE(showsIcon());
  const Image cover = desk.screen().area(kBar);
  startShell();
  EXPECT_TRUE(desk.until([&] { return desk.screen().area(kBar) != cover; }, kLong));
  EXPECT_FALSE(harness::showsIcons(desk.screen().settled(kIcon, 2s, kLong)));
  const Image aboveBar = desk.screen().area(kHighBar);
  ASSERT_TRUE(runScript("panels().forEach(p => { p.height *= 2; })"));
  ASSERT_TRUE(desk.until([&] { return desk.screen().area(kHighBar) != aboveBar; }));
  const Image higher = desk.screen().settled(kHighBar, 1s);
  ASSERT_TRUE(clickIcon());
  EXPECT_TRUE(desk.until(showsPanel, kLong));
  EXPECT_EQ(desk.screen().area(kHighBar), higher) << "the panel keeps clear of it";
  desk.toggleMode();
  EXPECT_TRUE(desk.until([&] { return showsIcon(); }, kLong));
}

TEST_F(PlasmaTest, TheChosenPictureComesAndTheOldOneIsBackToThePixel) {
  const std::vector<Image> before{seen(0), seen(1)};
  const auto isBlue = [&] { return seen(0).at(9, 9) == kBlue && seen(1).at(9, 9) == kBlue; };
  launch("Wallpaper", harness::chosenPicture(desk.picture("blue.png", kBlue)));
  desk.toggleMode();
  EXPECT_TRUE(desk.until(isBlue, kLong)) << program->errorOutput();
  desk.toggleMode();
  EXPECT_TRUE(desk.until([&] { return seen(0) == before[0] && seen(1) == before[1]; }, kLong));
}

}  // namespace
