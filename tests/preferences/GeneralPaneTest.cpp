#include "preferences/PreferencesTest.h"

namespace preferences {
namespace {

using platform::NSControlStateValue;

/// Every kind of picture that can be chosen, in order.
constexpr const char* kPictureTypes =
    "jpeg jpg png tga pict tiff tif pct pic jp2 jpf j2k jpx j2c gif AI GIF bmp dng dae eps "
    "fax fpx hdr icns ico openexr ps psd pntg qtif rad sgi xbm pic jpe heic mpo exr rgbe xyze "
    "mos cr2 fff nef nrw pef sr2 srf 3fr arw crw dcr erf gpr iiq kdc mdc mef mrw orf raf rwl "
    "srw x3f pbm psb ";

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
  desk.loop.whenWaiting([this] {
    const auto& panel = desk.screen.openPanel();
    ASSERT_TRUE(panel);
    std::string types;
    for (const std::string& type : panel->types) types += type + " ";
    EXPECT_EQ(types, kPictureTypes);
    EXPECT_TRUE(panel->files);
    EXPECT_FALSE(panel->directories);
    desk.screen.answerOpenPanel("/Users/someone/Pictures/My Beach.heic");
  });
  click(pane().btnChangeWallpaper);
  EXPECT_EQ(wallpaper(), "/Users/someone/Pictures/My Beach.heic");
  EXPECT_EQ(pane().lblCurrentWallpaper.lock()->content(), platform::NSTextContent::FilePath);
  EXPECT_EQ(stored("kUserdefaultsSelectedWallpaper"),
            Value("/Users/someone/Pictures/My Beach.heic"));
  EXPECT_EQ(desk.log.calls("defaults").size(), 1U);
  desk.log.clear();
  chooseWallpaper(std::nullopt);
  EXPECT_EQ(wallpaper(), "/Users/someone/Pictures/My Beach.heic");
  EXPECT_EQ(desk.log.calls("defaults"), Lines{});
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
  click(pane().checkBoxLaunchAtLogin);
  EXPECT_EQ(stored(shared::kUserdeaultsLaunchAtLogin), Value(true));
  EXPECT_EQ(desk.log.calls("loginItems").back(), "loginItems.insert /programs/calmdeck");
}

TEST_F(GeneralPaneTest, WhereTheUserBindsKeysItShowsWhatToWriteDown) {
  const auto lines = [] { return pane().lblOwnKeyBindings.lock()->stringValue(); };
  const auto isShown = [] {
    EXPECT_EQ(pane().lblOwnKeyBindings.lock()->isHidden(),
              pane().lblOwnKeyBindingsNote.lock()->isHidden());
    return !pane().lblOwnKeyBindings.lock()->isHidden();
  };
  storeShortcut(toggleApp, "k", Array{12});
  desk.desktop.hotKeys = nullptr;
  desk.desktop.ownKeyBindings = &desk.ownKeyBindings;
  launchAndOpen();
  EXPECT_TRUE(isShown());
  EXPECT_EQ(lines(), "bind 40 4096 toggle-presentation-mode");

  record(muteMic);
  pressKey(platform::kVK_ANSI_J, Bits::Control, "j");
  EXPECT_EQ(desk.screen.alerts().size(), 0U);
  EXPECT_EQ(look(muteMic), showing("⌃j"));
  EXPECT_EQ(lines(), "bind 40 4096 toggle-presentation-mode\nbind 38 4096 toggle-microphone");
  clear(toggleApp);
  EXPECT_EQ(lines(), "bind 38 4096 toggle-microphone");
  clear(muteMic);
  EXPECT_FALSE(isShown());
}

}  // namespace
}  // namespace preferences
