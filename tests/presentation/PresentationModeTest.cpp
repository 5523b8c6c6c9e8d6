#include <gmock/gmock.h>

#include "presentation/CoversTest.h"

namespace presentation {
namespace {

using namespace std::chrono_literals;
using platform::Value;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The ways to start and stop the mode.
enum class Road { Click, Shortcut };

/// Everything that the mode acts on, one of each.
class PresentationModeTest : public CoversTest, public ::testing::WithParamInterface<Road> {
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
  void go(Road road) {
    if (road == Road::Click) {
      clickMaster();
      return;
    }
    panel().togglePresentationMode();
    desk.loop.settle();
  }
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

INSTANTIATE_TEST_SUITE_P(Roads, PresentationModeTest,
                         ::testing::Values(Road::Click, Road::Shortcut), [](const auto& road) {
                           return road.param == Road::Click ? "Click" : "Shortcut";
                         });

TEST_P(PresentationModeTest, FiveFeaturesGoOnAndOffInTheirOrder) {
  launchWithEverything();
  const auto stored = desk.settings.values;
  for (int round = 1; round <= 2; ++round) {
    const auto start = desk.loop.now();
    EXPECT_EQ(callsOf([this] { go(GetParam()); }), kEverythingOn);
    EXPECT_EQ(desk.loop.now() - start, 1s);
    EXPECT_EQ(checkbox->properties.at("value"), Value(1));
    EXPECT_EQ(callsOf([this] { go(GetParam()); }), kEverythingOff);
    EXPECT_EQ(checkbox->properties.at("value"), Value(0));
  }
  EXPECT_THAT(desk.loop.sleeps(), ElementsAre(1s, 1s));
  EXPECT_EQ(desk.settings.values, stored);
}

TEST_P(PresentationModeTest, WithoutAWallpaperTheCoversComeFirstAndAtOnce) {
  launchWith({shared::kUserdefaultsToggleDesktopIcons, shared::kUserdefaultsToggleHideActiveApps});
  EXPECT_THAT(callsOf([this] { go(GetParam()); }),
              ElementsAre(kEverythingOn[0], "window.show behind at level -20, 0 0 1280 720 empty",
                          "windowList.capture 1", "applications.hide 7",
                          "window.update 0 0 1280 720 showing sea", "applications.hide 7"));
  EXPECT_THAT(desk.loop.sleeps(), IsEmpty());
}

TEST_P(PresentationModeTest, WhatHappensInTheSecondBeforeTheCoversComesAfterThem) {
  launchWithEverything();
  desk.loop.at(500ms, [this] { pressMaster(); });
  go(GetParam());
  // The stop was kept until the covers were there to be taken down.
  EXPECT_FALSE(panel().toggleButtonPresentationMode.lock()->isOn());
  Calls both = kEverythingOn;
  both.insert(both.end(), kEverythingOff.begin(), kEverythingOff.end());
  EXPECT_EQ(desk.log.calls(), both);
  EXPECT_EQ(desk.screen.coverCount(), 0U);
}

TEST_P(PresentationModeTest, AStopThatArrivesDuringTheStartComesAfterAllThatItHasQueued) {
  launchWithEverything();
  const auto answer = checkbox->onClick;
  bool isFirst = true;
  checkbox->onClick = [&](simulated::SimulatedScriptObject& self) {
    answer(self);
    // It took its time, in which the user has changed his mind.
    if (std::exchange(isFirst, false)) desk.loop.post([this] { pressMaster(); });
  };
  go(GetParam());
  Calls both = kEverythingOn;
  both.insert(both.end(), kEverythingOff.begin(), kEverythingOff.end());
  EXPECT_EQ(desk.log.calls(), both);
  EXPECT_EQ(desk.screen.coverCount(), 0U);
  EXPECT_FALSE(desk.applications.isHidden(7));
}

TEST_P(PresentationModeTest, TheTwoRoadsMeetInOneState) {
  launchWithEverything();
  const Road other = GetParam() == Road::Click ? Road::Shortcut : Road::Click;
  EXPECT_EQ(callsOf([this] { go(GetParam()); }), kEverythingOn);
  EXPECT_EQ(callsOf([&] { go(other); }), kEverythingOff);
  EXPECT_FALSE(panel().toggleButtonPresentationMode.lock()->isOn());
}

TEST_P(PresentationModeTest, NothingThatFailsTurnsASwitch) {
  desk.hasAudio = desk.hasAutomation = desk.hasApplications = false;
  desk.hasPictures = desk.hasWindowList = desk.hasSpaces = false;
  launchWithEverything();
  EXPECT_EQ(callsOf([this] { go(GetParam()); }),
            (Calls{kEverythingOn[0], "window.show behind at level -20, 0 0 1280 720 empty"}));
  EXPECT_EQ(callsOf([this] { go(GetParam()); }), (Calls{kEverythingOff[0], "window.hide"}));
  for (const auto& outlet :
       {panel().toggleButtonHideDesktopIcons, panel().toggleButtonDisableNotifications,
        panel().toggleButtonHideActiveApps, panel().toggleButtonTurnOffSpeaker,
        panel().toggleButtonChangeWallpaper}) {
    EXPECT_TRUE(outlet.lock()->isOn());
  }
  go(GetParam());
  click(panel().toggleButtonTurnOffSpeaker);
  EXPECT_EQ(desk.settings.object(shared::kUserdefaultsToggleSpeakerOff), Value(false));
}

TEST_P(PresentationModeTest, TheEndOfTheProgramLeavesTheModesEffectsButNoCover) {
  launchWithEverything();
  go(GetParam());
  relaunch();
  EXPECT_FALSE(panel().toggleButtonPresentationMode.lock()->isOn());
  EXPECT_EQ(desk.screen.coverCount(), 0U);
  EXPECT_TRUE(desk.applications.isHidden(7));
  EXPECT_EQ(desk.audio.isMuted(kSpeakers), std::optional(true));
  EXPECT_EQ(desk.pictures.pictures["A"], "/new.png");
  EXPECT_EQ(checkbox->properties.at("value"), Value(1));
  EXPECT_THAT(desk.log.calls("pictures"), IsEmpty());
  EXPECT_EQ(desk.tray.image(), "logo-initial-small");
}

TEST_P(PresentationModeTest, AnEndBeforeOrDuringTheSecondLeavesNothing) {
  launchWithEverything();
  desk.loop.at(500ms, [this] { desk.loop.terminate(); });
  go(GetParam());
  relaunch();
  go(GetParam());
  const auto wallpaper = panel().toggleButtonChangeWallpaper.lock();
  desk.screen.press(*wallpaper);
  desk.screen.release(*wallpaper);  // the refresh waits, and so do the covers
}

TEST_P(PresentationModeTest, AFeatureSwitchActsAtOnceAndIsStored) {
  const struct {
    std::weak_ptr<controls::CToggleButton> ViewController::*outlet;
    Calls on;
    Calls off;
  } rows[] = {
      {&ViewController::toggleButtonDisableNotifications,
       {"automation.keyCode 53", "defaults.set kUserdefaultsToggleDnd"},
       {"automation.keyCode 53", "defaults.set kUserdefaultsToggleDnd"}},
      {&ViewController::toggleButtonHideActiveApps,
       {"applications.hide 7", "defaults.set kUserdefaultsToggleHideActiveApps",
        "applications.hide 7"},
       {"applications.unhide 7", "defaults.set kUserdefaultsToggleHideActiveApps"}},
      {&ViewController::toggleButtonTurnOffSpeaker,
       {"audio.set 42 mute 1", "defaults.set kUserdefaultsToggleSpeakerOff"},
       {"audio.set 42 mute 0", "defaults.set kUserdefaultsToggleSpeakerOff"}},
      {&ViewController::toggleButtonChangeWallpaper,
       {"pictures.set A /new.png", "defaults.set kUserdefaultsToggleWallpaper"},
       {"pictures.set A /old.png", "defaults.set kUserdefaultsToggleWallpaper"}},
  };
  launch();
  go(GetParam());
  for (const auto& row : rows) {
    EXPECT_EQ(callsOf([&] { click(panel().*row.outlet); }), row.on);
    EXPECT_EQ(callsOf([&] { click(panel().*row.outlet); }), row.off);
  }
  EXPECT_EQ(checkbox->clicks, 2);
  // All were taken back already, so the stop leaves alone even what somebody else hid.
  desk.applications.hidden = {7};
  EXPECT_EQ(callsOf([this] { go(GetParam()); }), Calls{kEverythingOff[0]});
  EXPECT_THAT(desk.loop.sleeps(), IsEmpty());
}

TEST_P(PresentationModeTest, AWallpaperThatChangesReachesTheCoversASecondLater) {
  launchWith({shared::kUserdefaultsToggleDesktopIcons});
  go(GetParam());
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

TEST_P(PresentationModeTest, CoversComeAtOnceWhenOnlyTheirSwitchIsTurned) {
  launchWith({shared::kUserdefaultsToggleWallpaper});
  go(GetParam());
  EXPECT_THAT(desk.loop.sleeps(), IsEmpty());
  const std::string stored = "defaults.set kUserdefaultsToggleDesktopIcons";
  EXPECT_THAT(callsOf([this] { click(panel().toggleButtonHideDesktopIcons); }),
              ElementsAre(kEverythingOn[6], kEverythingOn[7], stored, kEverythingOn[8]));
  EXPECT_THAT(callsOf([this] { click(panel().toggleButtonHideDesktopIcons); }),
              ElementsAre("window.hide", stored));
  EXPECT_THAT(callsOf([this] { go(GetParam()); }),
              ElementsAre(kEverythingOff[0], kEverythingOff[2]));
  EXPECT_THAT(desk.loop.sleeps(), IsEmpty());
}

}  // namespace
}  // namespace presentation
