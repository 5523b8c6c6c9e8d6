#include <algorithm>

#include "preferences/PreferencesTest.h"
#include "preferences/WallpaperTypes.h"

namespace preferences {
namespace {

using platform::NSControlStateValue;

class GeneralPaneTest : public PreferencesTest {
 protected:
  [[nodiscard]] static std::string wallpaper() {
    return pane().lblCurrentWallpaper.lock()->stringValue();
  }
  [[nodiscard]] static NSControlStateValue checkbox() {
    return pane().checkBoxLaunchAtLogin.lock()->state();
  }
  /// The user opens the chooser and leaves it so.
  void chooseWallpaper(const std::optional<std::string>& path) {
    desk.loop.whenWaiting([this, path] { desk.screen.answerOpenPanel(path); });
    click(pane().btnChangeWallpaper);
    EXPECT_FALSE(desk.screen.openPanel());
  }
};

TEST_F(GeneralPaneTest, TheMenuOpensTheWindowInFrontAndOnlyOnce) {
  launch();
  desk.tray.rightClick();
  desk.log.clear();
  desk.tray.choose("Preferences");
  EXPECT_EQ(desk.log.calls("window"),
            (Lines{"window.show", "window.makeKey", "windows.activateApplication"}));
  const auto& controller = app::sharedPreferencesWindowController();
  EXPECT_EQ(controller->window()->title(), "Preferences");
  record(toggleApp);
  openPreferences();
  EXPECT_EQ(app::sharedPreferencesWindowController(), controller);
  EXPECT_EQ(look(toggleApp), kRecording);
  EXPECT_EQ(desk.screen.visibleWindowCount(), 1U);
  desk.tray.leftClick();
  EXPECT_TRUE(delegate().popover()->isShown());
  desk.screen.actElsewhere();
  EXPECT_TRUE(controller->window()->isVisible());
  EXPECT_FALSE(delegate().popover()->isShown());
}

TEST_F(GeneralPaneTest, AChosenWallpaperIsStoredAndShownAsItsPath) {
  launchAndOpen();
  EXPECT_EQ(wallpaper(), "Please select a Wallpaper");
  chooseWallpaper("/Users/someone/Pictures/My Beach.heic");
  EXPECT_EQ(wallpaper(), "/Users/someone/Pictures/My Beach.heic");
  EXPECT_EQ(stored(shared::kUserdefaultsSelectedWallpaper),
            Value("/Users/someone/Pictures/My Beach.heic"));
  desk.log.clear();
  chooseWallpaper(std::nullopt);
  EXPECT_EQ(wallpaper(), "/Users/someone/Pictures/My Beach.heic");
  EXPECT_EQ(desk.log.calls("defaults"), Lines{});
  EXPECT_EQ(desk.log.calls("pictures"), Lines{});
}

TEST_F(GeneralPaneTest, TheChooserAsksForOneImageFile) {
  launchAndOpen();
  desk.loop.whenWaiting([this] {
    const auto& panel = desk.screen.openPanel();
    ASSERT_TRUE(panel);
    EXPECT_EQ(panel->message, "Please select an image");
    EXPECT_EQ(panel->prompt, "Select");
    EXPECT_EQ(panel->types, allowedWallpaperTypes());
    EXPECT_TRUE(panel->files);
    EXPECT_FALSE(panel->directories);
    desk.screen.answerOpenPanel(std::nullopt);
  });
  click(pane().btnChangeWallpaper);
  const auto& types = allowedWallpaperTypes();
  EXPECT_EQ(types.size(), 67U);
  EXPECT_EQ(types.front(), "jpeg");
  EXPECT_EQ(types.back(), "psb");
  EXPECT_EQ(std::ranges::count(types, "pic"), 2);
  EXPECT_EQ(std::ranges::count(types, "txt"), 0);
}

TEST_F(GeneralPaneTest, EveryOpeningReadsTheSettingsAnew) {
  launchAndOpen();
  EXPECT_EQ(checkbox(), NSControlStateValue::On);
  closePreferences();
  store(shared::kUserdefaultsSelectedWallpaper, "/pictures/beach");
  store(shared::kUserdeaultsLaunchAtLogin, false);
  storeShortcut(muteMic, "j", Array{12});
  openPreferences();
  EXPECT_EQ(wallpaper(), "/pictures/beach");
  EXPECT_EQ(checkbox(), NSControlStateValue::Off);
  EXPECT_EQ(look(muteMic), showing("⌃j"));
  closePreferences();
  // What is of another type counts as absent, and the checkbox stays.
  store(shared::kUserdefaultsSelectedWallpaper, Array{"/pictures/beach"});
  store(shared::kUserdeaultsLaunchAtLogin, 1);
  openPreferences();
  EXPECT_EQ(wallpaper(), "Please select a Wallpaper");
  EXPECT_EQ(checkbox(), NSControlStateValue::Off);
}

TEST_F(GeneralPaneTest, TheCheckboxStoresTheChoiceAndChangesTheLoginItemsAtOnce) {
  launchAndOpen();
  click(pane().checkBoxLaunchAtLogin);
  EXPECT_EQ(stored(shared::kUserdeaultsLaunchAtLogin), Value(false));
  EXPECT_EQ(desk.log.calls("loginItems").size(), 1U);
  closePreferences();
  openPreferences();
  EXPECT_EQ(checkbox(), NSControlStateValue::Off);
  click(pane().checkBoxLaunchAtLogin);
  EXPECT_EQ(stored(shared::kUserdeaultsLaunchAtLogin), Value(true));
  EXPECT_EQ(desk.log.calls("loginItems"), Lines{"loginItems.insert /programs/calmdeck"});
}

}  // namespace
}  // namespace preferences
