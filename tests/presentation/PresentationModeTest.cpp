#include <gmock/gmock.h>

#include "platform/carbon/KeyCodes.h"
#include "presentation/FeatureTest.h"

namespace presentation {
namespace {

using namespace std::chrono_literals;
using platform::Value;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Everything that the mode acts on, one of each.
class PresentationModeTest : public CoversTest {
 protected:
  PresentationModeTest() {
    addSpeakers();
    desk.applications.list = {{7, "Mail", platform::NSApplicationActivationPolicy::Regular}};
    desk.pictures.pictures = {{"A", "/old.png"}};
    store(shared::kUserdefaultsSelectedWallpaper, "/new.png");
    addPicture("sea", 1280, 720);
    addControlCenter();
  }
  void launchWithEverything() {
    launchWith({shared::kUserdefaultsToggleDesktopIcons, shared::kUserdefaultsToggleDnd,
                shared::kUserdefaultsToggleHideActiveApps, shared::kUserdefaultsToggleSpeakerOff,
                shared::kUserdefaultsToggleWallpaper});
  }
  void pressShortcut() {
    desk.keys.press({platform::kVK_ANSI_K, platform::controlKey});
    desk.loop.settle();
  }
  [[nodiscard]] bool isOn() { return panel().toggleButtonPresentationMode.lock()->isOn(); }
};

const Calls kEverythingOn{"statusItem.setImage logo-active-small",
                          "pictures.set A /new.png",
                          "automation.keyCode 53",
                          "applications.hide 7",
                          "audio.set 42 mute 1",
                          "applications.hide 7",
                          "window.show behind at level -20, 0 0 1280 720 empty",
                          "windowList.capture 1",
                          "window.update 0 0 1280 720 showing sea"};
const Calls kEverythingOff{"statusItem.setImage logo-initial-small",
                           "window.hide",
                           "pictures.set A /old.png",
                           "automation.keyCode 53",
                           "applications.unhide 7",
                           "audio.set 42 mute 0"};

Calls onAndOff() {
  Calls both = kEverythingOn;
  both.insert(both.end(), kEverythingOff.begin(), kEverythingOff.end());
  return both;
}

TEST_F(PresentationModeTest, WithoutAWallpaperTheCoversComeFirstAndAtOnce) {
  launchWith({shared::kUserdefaultsToggleDesktopIcons, shared::kUserdefaultsToggleHideActiveApps});
  EXPECT_THAT(callsOf([this] { clickMaster(); }),
              ElementsAre(kEverythingOn[0], "window.show behind at level -20, 0 0 1280 720 empty",
                          "windowList.capture 1", "applications.hide 7",
                          "window.update 0 0 1280 720 showing sea", "applications.hide 7"));
  EXPECT_THAT(desk.loop.sleeps(), IsEmpty());
}

TEST_F(PresentationModeTest, WhatHappensInTheSecondBeforeTheCoversComesAfterThem) {
  launchWithEverything();
  desk.loop.at(500ms, [this] { pressMaster(); });
  clickMaster();
  // The stop was kept until the covers were there to be taken down.
  EXPECT_FALSE(isOn());
  EXPECT_EQ(desk.log.calls(), onAndOff());
  EXPECT_EQ(desk.screen.covers().size(), 0U);
}

TEST_F(PresentationModeTest, AStopThatArrivesDuringTheStartComesAfterAllThatItHasQueued) {
  launchWithEverything();
  const auto answer = checkbox->onClick;
  bool isFirst = true;
  checkbox->onClick = [&](simulated::SimulatedScriptObject& self) {
    answer(self);
    // It took its time, in which the user has changed his mind.
    if (std::exchange(isFirst, false)) desk.loop.post([this] { pressMaster(); });
  };
  clickMaster();
  EXPECT_EQ(desk.log.calls(), onAndOff());
  EXPECT_EQ(desk.screen.covers().size(), 0U);
  EXPECT_FALSE(desk.applications.isHidden(7));
}

TEST_F(PresentationModeTest, FiveFeaturesGoOnAndOffInTheirOrderByTheShortcutAsByAClick) {
  store(shared::kuserdefault_ToggleAppShortcut, "k");
  store(shared::kuserdefault_ToggleAppFlag, platform::Array{12});
  desk.loop.setWallClockStart(platform::WallTime(1794858182s));
  launchWithEverything();
  const auto stored = desk.settings.values;
  EXPECT_EQ(callsOf([this] { pressShortcut(); }), kEverythingOn);
  EXPECT_EQ(desk.log.entries().front(), "print Pressed at 2026-11-16 19:43:02 +0000");
  EXPECT_EQ(checkbox->properties.at("value"), Value(1));
  EXPECT_EQ(callsOf([this] { clickMaster(); }), kEverythingOff);
  EXPECT_EQ(checkbox->properties.at("value"), Value(0));
  EXPECT_EQ(callsOf([this] { clickMaster(); }), kEverythingOn);
  EXPECT_EQ(callsOf([this] { pressShortcut(); }), kEverythingOff);
  EXPECT_FALSE(isOn());
  EXPECT_EQ(desk.userSession.modesSeen, (std::vector{true, false, true, false}));
  EXPECT_THAT(desk.loop.sleeps(), ElementsAre(1s, 1s));
  EXPECT_EQ(desk.settings.values, stored);
}

TEST_F(PresentationModeTest, CoversThatWereDeferredComeAlsoWhenTheModeHasEnded) {
  launchWithEverything();
  panel().togglePresentationMode();
  panel().togglePresentationMode();
  EXPECT_EQ(desk.screen.covers().size(), 0U);
  desk.loop.settle();
  EXPECT_FALSE(isOn());
  EXPECT_EQ(desk.screen.covers().size(), 1U);
}

TEST_F(PresentationModeTest, OperationsAreReachedByName) {
  launchWith({shared::kUserdefaultsToggleDesktopIcons});
  const auto perform = [this](const char* name) { panel().performSelector(name); };
  for (const char* name : {"hideAllApps", "showAllHiddenApps"}) perform(name);
  EXPECT_THAT(desk.log.calls(), ElementsAre("applications.hide 7", "applications.unhide 7"));
  perform("doHideDesktopIcon");
  EXPECT_EQ(desk.screen.covers().size(), 1U);
  perform("doShowDesktopIcon");
  EXPECT_EQ(desk.screen.covers().size(), 0U);
}

TEST_F(PresentationModeTest, NothingThatFailsTurnsASwitch) {
  desk.desktop.audioObjects = nullptr;
  desk.desktop.automation = nullptr;
  desk.desktop.runningApplications = nullptr;
  desk.desktop.desktopPictures = nullptr;
  desk.desktop.windowList = nullptr;
  desk.desktop.spaces = nullptr;
  launchWithEverything();
  EXPECT_EQ(callsOf([this] { clickMaster(); }),
            (Calls{kEverythingOn[0], "window.show behind at level -20, 0 0 1280 720 empty"}));
  EXPECT_EQ(callsOf([this] { clickMaster(); }), (Calls{kEverythingOff[0], "window.hide"}));
  clickMaster();
  click(panel().toggleButtonTurnOffSpeaker);
  EXPECT_EQ(desk.settings.object(shared::kUserdefaultsToggleSpeakerOff), Value(false));
}

TEST_F(PresentationModeTest, TheEndOfTheProgramLeavesTheModesEffectsButNoCover) {
  launchWithEverything();
  clickMaster();
  desk.tray.rightClick();
  EXPECT_EQ(callsOf([this] { desk.tray.choose("Quit"); }), Calls{});
  EXPECT_TRUE(desk.loop.isTerminated());
  relaunch();
  EXPECT_FALSE(isOn());
  EXPECT_EQ(desk.screen.covers().size(), 0U);
  EXPECT_TRUE(desk.applications.isHidden(7));
  EXPECT_EQ(desk.audio.isMuted(kSpeakers), std::optional(true));
  EXPECT_EQ(desk.pictures.pictures["A"], "/new.png");
  EXPECT_EQ(checkbox->properties.at("value"), Value(1));
  EXPECT_THAT(desk.log.calls("pictures"), IsEmpty());
  EXPECT_EQ(desk.tray.image(), "logo-initial-small");
}

TEST_F(PresentationModeTest, AnEndBeforeOrDuringTheSecondLeavesNothing) {
  launchWithEverything();
  desk.loop.at(500ms, [this] { desk.loop.terminate(); });
  clickMaster();
  relaunch();
  clickMaster();
  const auto wallpaper = panel().toggleButtonChangeWallpaper.lock();
  desk.screen.press(*wallpaper);
  desk.screen.release(*wallpaper);  // the refresh waits, and so do the covers
}

TEST_F(PresentationModeTest, AFeatureSwitchActsAtOnceAndIsStored) {
  const struct {
    std::weak_ptr<controls::CToggleButton> ViewController::*outlet;
    const char* on;
    const char* off;
    const char* key;
  } rows[] = {
      {&ViewController::toggleButtonDisableNotifications, "automation.keyCode 53",
       "automation.keyCode 53", "kUserdefaultsToggleDnd"},
      {&ViewController::toggleButtonHideActiveApps, "applications.hide 7", "applications.unhide 7",
       "kUserdefaultsToggleHideActiveApps"},
      {&ViewController::toggleButtonTurnOffSpeaker, "audio.set 42 mute 1", "audio.set 42 mute 0",
       "kUserdefaultsToggleSpeakerOff"},
      {&ViewController::toggleButtonChangeWallpaper, "pictures.set A /new.png",
       "pictures.set A /old.png", "kUserdefaultsToggleWallpaper"},
  };
  launch();
  clickMaster();
  for (const auto& row : rows) {
    for (const char* act : {row.on, row.off}) {
      Calls calls = callsOf([&] { click(panel().*row.outlet); });
      calls.resize(2);  // what is hidden is asked once more after that
      EXPECT_THAT(calls, ElementsAre(act, std::string("defaults.set ") + row.key));
    }
  }
  EXPECT_EQ(checkbox->clicks, 2);
  // All were taken back already, so the stop leaves alone even what somebody else hid.
  desk.applications.hidden = {7};
  EXPECT_EQ(callsOf([this] { clickMaster(); }), Calls{kEverythingOff[0]});
  EXPECT_THAT(desk.loop.sleeps(), IsEmpty());
}

TEST_F(PresentationModeTest, AWallpaperThatChangesReachesTheCoversASecondLater) {
  launchWith({shared::kUserdefaultsToggleDesktopIcons});
  clickMaster();
  for (const char* path : {"/new.png", "/old.png"}) {
    clearPictures();
    addPicture(path, 1280, 720);
    desk.loop.at(1s - 1ns, [this] { EXPECT_THAT(desk.log.calls("windowList"), IsEmpty()); });
    EXPECT_THAT(callsOf([this] { click(panel().toggleButtonChangeWallpaper); }),
                ElementsAre(std::string("pictures.set A ") + path,
                            "defaults.set kUserdefaultsToggleWallpaper", "windowList.capture 1",
                            std::string("window.update 0 0 1280 720 showing ") + path));
  }
  EXPECT_THAT(desk.loop.sleeps(), ElementsAre(1s, 1s));
}

TEST_F(PresentationModeTest, CoversComeAtOnceWhenOnlyTheirSwitchIsTurned) {
  launchWith({shared::kUserdefaultsToggleWallpaper});
  clickMaster();
  EXPECT_THAT(desk.loop.sleeps(), IsEmpty());
  const std::string stored = "defaults.set kUserdefaultsToggleDesktopIcons";
  EXPECT_THAT(callsOf([this] { click(panel().toggleButtonHideDesktopIcons); }),
              ElementsAre(kEverythingOn[6], kEverythingOn[7], stored, kEverythingOn[8]));
  EXPECT_THAT(callsOf([this] { click(panel().toggleButtonHideDesktopIcons); }),
              ElementsAre("window.hide", stored));
  EXPECT_THAT(callsOf([this] { clickMaster(); }),
              ElementsAre(kEverythingOff[0], kEverythingOff[2]));
  EXPECT_THAT(desk.loop.sleeps(), IsEmpty());
}

}  // namespace
}  // namespace presentation
