#include "app/AppDelegate.h"

#include <gmock/gmock.h>

#include "shared/SettingsKeys.h"
#include "support/ApplicationTest.h"

namespace app {
namespace {

using namespace std::chrono_literals;
using platform::NSEventType;
using platform::Value;
using ::testing::ElementsAre;
using Lines = std::vector<std::string>;

class AppDelegateTest : public tests::ApplicationTest {
 protected:
  /// Those parts of the program that the launch has made so far.
  [[nodiscard]] std::string parts() {
    const AppDelegate& program = delegate();
    std::string made;
    if (program.statusbutton()) made += ", button";
    if (program.popover()->contentViewController()) made += ", panel";
    if (program.statusBarMenu()) made += ", menu";
    if (program.hotKeyToggleApp()) made += ", toggle";
    if (program.hotKeyMuteMic()) made += ", mute";
    if (program.updater()) made += ", updater";
    return made;
  }
};

TEST_F(AppDelegateTest, AStoredChoiceAboutTheLoginStaysAndAnythingElseBecomesTrue) {
  store(shared::kUserdeaultsLaunchAtLogin, false);
  launch();
  EXPECT_EQ(desk.log.calls("defaults"), Lines{});
  EXPECT_EQ(desk.startedAtLogin.paths(), Lines{});
  for (const Value& other : {Value("false"), Value(0), Value(0.0), Value(platform::Array{})}) {
    store(shared::kUserdeaultsLaunchAtLogin, other);
    desk.startedAtLogin.list.clear();
    relaunch();
    EXPECT_EQ(desk.settings.object(shared::kUserdeaultsLaunchAtLogin), Value(true));
    EXPECT_EQ(desk.startedAtLogin.paths(), Lines{desk.desktop.bundlePath});
  }
}

TEST_F(AppDelegateTest, TheLaunchTakesItsStepsInOrder) {
  store(shared::kUserdeaultsLaunchAtLogin, false);
  store(shared::kuserdefault_ToggleAppShortcut, "k");
  store(shared::kuserdefault_ToggleAppFlag, platform::Array{12});
  store(shared::kuserdefault_MuteMicShortcut, "m");
  store(shared::kuserdefault_MuteMicFlag, platform::Array{12, 11});
  desk.startedAtLogin.add(desk.desktop.bundlePath);
  // Each step, and what the program consists of by then.
  Lines steps;
  desk.log.witness = [this, &steps](const std::string& entry) { steps.push_back(entry + parts()); };
  launchOnly();
  EXPECT_THAT(
      steps,
      ElementsAre("loginItems.remove item-1", "print Optional(<LSSharedFileListItem item-1>)",
                  "statusItem.setImage logo-initial-small, button",
                  "hotKeys.register 40 4096, button, panel, menu",
                  "hotKeys.register 46 4352, button, panel, menu, toggle",
                  "updates.checkInBackground, button, panel, menu, toggle, mute, updater"));
  desk.log.witness = nullptr;
  EXPECT_EQ(delegate().statusItem()->length(), -1.0);
  EXPECT_EQ(delegate().statusItem()->menu(), nullptr);
  EXPECT_EQ(delegate().popover()->behavior(), platform::NSPopoverBehavior::Transient);
  EXPECT_EQ(delegate().popover()->contentViewController(), sharedViewController());
  EXPECT_EQ(delegate().statusBarMenu()->title(), "Status Bar Menu");
}

TEST_F(AppDelegateTest, ThePanelOpensHalfASecondAfterTheLaunchAndWhenItIsStartedAgain) {
  launchOnly();
  desk.loop.advance(500ms - 1ns);
  EXPECT_FALSE(delegate().popover()->isShown());
  EXPECT_FALSE(panel().isViewLoaded());
  desk.loop.advance(1ns);
  for (int start = 0; start < 2; ++start) {
    EXPECT_TRUE(delegate().popover()->isShown());
    desk.screen.escape();
    EXPECT_FALSE(delegate().popover()->isShown());
    desk.userSession.reopen();
  }
  desk.userSession.reopen();
  EXPECT_EQ(desk.screen.visibleWindowCount(), 1U);
  EXPECT_EQ(desk.output.lines, Lines{});
}

TEST_F(AppDelegateTest, WithoutAButtonOnlyTheRestIsSetUp) {
  desk.tray.hasButtons = false;
  launch();
  EXPECT_EQ(delegate().statusbutton(), nullptr);
  EXPECT_EQ(delegate().statusBarMenu(), nullptr);
  EXPECT_EQ(delegate().popover()->contentViewController(), nullptr);
  desk.tray.leftClick();
  desk.userSession.reopen();
  EXPECT_THAT(desk.log.entries(),
              ElementsAre("defaults.set kUserdeaultsLaunchAtLogin",
                          "loginItems.insert /programs/calmdeck", "updates.checkInBackground"));
  panel().togglePresentationMode();
  EXPECT_TRUE(panel().toggleButtonPresentationMode.lock()->isOn());
}

TEST_F(AppDelegateTest, ARightClickPrintsAndOpensTheMenuForOnceInThePanelsPlace) {
  launch();
  desk.log.clear();
  desk.tray.rightClick();
  EXPECT_THAT(desk.log.entries(),
              ElementsAre("window.hide", "print Right click!", "statusItem.openMenu"));
  EXPECT_EQ(desk.tray.menu(), (Lines{"Preferences", "Check for Updates", "Quit"}));
  EXPECT_EQ(delegate().statusItem()->menu(), delegate().statusBarMenu());

  desk.tray.closeMenu();
  EXPECT_EQ(delegate().statusItem()->menu(), nullptr);
  desk.tray.leftClick();
  EXPECT_FALSE(desk.tray.menu());
  EXPECT_TRUE(delegate().popover()->isShown());
  desk.tray.rightClick();
  EXPECT_TRUE(desk.tray.menu());
}

TEST_F(AppDelegateTest, OnlyReleasesOfEitherButtonSendTheAction) {
  launch();
  desk.log.clear();
  desk.tray.click(NSEventType::LeftMouseDown);
  desk.tray.click(NSEventType::RightMouseDown);
  desk.tray.leftClick();
  delegate().togglePopover(nullptr);  // no event is under way any more
  EXPECT_THAT(desk.log.entries(), ElementsAre("print Left click!", "window.hide"));
  EXPECT_FALSE(delegate().popover()->isShown());
}

TEST_F(AppDelegateTest, ThePlatformReachesItByTheseNames) {
  launch();
  for (const char* name : {"applicationWillFinishLaunching:", "applicationDidFinishLaunching:",
                           "applicationWillTerminate:", "menuDidClose:"}) {
    EXPECT_TRUE(delegate().respondsToSelector(name)) << name;
  }
}

TEST_F(AppDelegateTest, CheckForUpdatesAsksTheServiceAndNobodyWithoutOne) {
  launch();
  for (const bool hasUpdates : {true, false}) {
    desk.desktop.updates = hasUpdates ? &desk.updateService : nullptr;
    desk.tray.rightClick();
    desk.log.clear();
    desk.tray.choose("Check for Updates");
    EXPECT_EQ(desk.log.calls(), hasUpdates ? Lines{"updates.checkForUpdates"} : Lines{});
    EXPECT_EQ(delegate().statusItem()->menu(), nullptr);
  }
}

}  // namespace
}  // namespace app
