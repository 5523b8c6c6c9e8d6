#include "presentation/ViewController.h"

#include <array>

#include "presentation/FeatureTest.h"

namespace presentation {
namespace {

using namespace std::chrono_literals;
using controls::CToggleButton;
using platform::Array;
using platform::Dictionary;
using platform::Value;

struct FeatureSwitch {
  std::int64_t tag;
  std::string_view key;
  std::weak_ptr<CToggleButton> ViewController::*outlet;
};

constexpr std::array<FeatureSwitch, 5> kFeatures{{
    {11, "kUserdefaultsToggleDesktopIcons", &ViewController::toggleButtonHideDesktopIcons},
    {22, "kUserdefaultsToggleDnd", &ViewController::toggleButtonDisableNotifications},
    {33, "kUserdefaultsToggleHideActiveApps", &ViewController::toggleButtonHideActiveApps},
    {44, "kUserdefaultsToggleSpeakerOff", &ViewController::toggleButtonTurnOffSpeaker},
    {55, "kUserdefaultsToggleWallpaper", &ViewController::toggleButtonChangeWallpaper},
}};

class PanelTest : public FeatureTest {
 protected:
  PanelTest() {
    addSpeakers();
    store(shared::kUserdefaultsSelectedWallpaper, "/pictures/sea.png");
  }

  [[nodiscard]] std::shared_ptr<CToggleButton> master() {
    return panel().toggleButtonPresentationMode.lock();
  }
  [[nodiscard]] std::shared_ptr<CToggleButton> feature(const FeatureSwitch& row) {
    return (panel().*row.outlet).lock();
  }
  [[nodiscard]] std::string lineOf(std::weak_ptr<platform::NSTextField> ViewController::*line) {
    return (panel().*line).lock()->stringValue();
  }
  void postWith(std::optional<Dictionary> userInfo) {
    platform::NSNotificationCenter::defaultCenter().postNotificationName("toggle", nullptr,
                                                                         std::move(userInfo));
  }
};

TEST_F(PanelTest, SwitchesHaveTheirTagsAndStartOff) {
  desk.settings.values.clear();
  launch();
  EXPECT_EQ(master()->statetag, 99);
  EXPECT_FALSE(master()->isOn());
  EXPECT_EQ(desk.tray.toolTip(), "Calmdeck: presentation mode is off");
  for (const FeatureSwitch& row : kFeatures) {
    EXPECT_EQ(feature(row)->statetag, row.tag);
    EXPECT_FALSE(feature(row)->isOn()) << row.key;
  }
  EXPECT_TRUE(panel().lblComingSoon.lock()->isHidden());
  EXPECT_EQ(callsOf([this] { click(panel().toggleButtonPresentationMode); }),
            (Calls{"statusItem.setImage logo-active-small"}));
  EXPECT_EQ(desk.tray.toolTip(), "Calmdeck: presentation mode is on");
  click(panel().toggleButtonPresentationMode);
  EXPECT_EQ(desk.tray.toolTip(), "Calmdeck: presentation mode is off");
}

TEST_F(PanelTest, StoredSwitchesAreRestoredAndNothingIsApplied) {
  for (const FeatureSwitch& row : kFeatures) {
    store(row.key, row.tag != 33);
  }
  launch();
  desk.loop.advance(300ms);
  for (const FeatureSwitch& row : kFeatures) {
    EXPECT_EQ(feature(row)->isOn(), row.tag != 33) << row.key;
    EXPECT_EQ(feature(row)->circle()->presentationFrame(desk.loop.now()).x, row.tag != 33 ? 20 : 2);
  }
  EXPECT_FALSE(master()->isOn());
  EXPECT_EQ(desk.log.calls("audio"), Calls{});
  EXPECT_EQ(desk.log.calls("defaults"), (Calls{"defaults.set kUserdeaultsLaunchAtLogin"}));
}

TEST_F(PanelTest, AStoredValueOfAnotherTypeLeavesTheSwitchOffAndStays) {
  for (const Value& wrong : {Value("true"), Value(1), Value(Array{true})}) {
    store(kFeatures[3].key, wrong);
    relaunch();
    EXPECT_FALSE(feature(kFeatures[3])->isOn());
    EXPECT_EQ(desk.settings.object(kFeatures[3].key), wrong);
  }
}

TEST_F(PanelTest, AFeatureSwitchIsStoredAndNotAppliedWhileTheModeIsOff) {
  launch();
  for (const FeatureSwitch& row : kFeatures) {
    for (const bool state : {true, false}) {
      EXPECT_EQ(callsOf([&] { click(feature(row)); }),
                (Calls{"defaults.set " + std::string(row.key)}));
      EXPECT_EQ(feature(row)->isOn(), state);
      EXPECT_EQ(desk.settings.object(row.key), Value(state));
    }
  }
}

TEST_F(PanelTest, NotificationsWithoutUsableEntriesAreIgnored) {
  launch();
  click(master());
  const std::optional<Dictionary> rows[] = {
      std::nullopt,
      Dictionary{{"isOn", true}},
      Dictionary{{"index", 44}},
      Dictionary{{"isOn", 1}, {"index", 44}},
      Dictionary{{"isOn", true}, {"index", 44.0}},
      Dictionary{{"isOn", true}, {"index", 0}},
      Dictionary{{"isOn", true}, {"index", 66}},
  };
  for (const auto& userInfo : rows) {
    EXPECT_EQ(callsOf([&] { postWith(userInfo); }), Calls{})
        << (userInfo ? platform::description(*userInfo) : "none");
  }
  EXPECT_EQ(callsOf([this] {
              postWith(Dictionary{{"isOn", true}, {"index", 44}});
            }),
            (Calls{"audio.set 42 mute 1", "defaults.set kUserdefaultsToggleSpeakerOff"}));
}

TEST_F(PanelTest, TheMasterSaysWhetherAnythingIsChosen) {
  const auto expectSaid = [this](const char* expected) {
    EXPECT_EQ(lineOf(&ViewController::lblPresentationMode), expected);
    EXPECT_EQ(master()->accessibilityHelp(), expected);
  };
  launch();
  for (const FeatureSwitch& row : kFeatures) {
    SCOPED_TRACE(row.key);
    expectSaid("Nothing is switched on below");
    click(feature(row));
    expectSaid("Applies what is switched on below");
    relaunch();
    expectSaid("Applies what is switched on below");
    click(feature(row));
  }
  // A switch that goes back by itself was not on.
  desk.settings.values.erase(std::string(shared::kUserdefaultsSelectedWallpaper));
  desk.loop.whenWaiting([this] { desk.screen.answerAlert(0); });
  click(panel().toggleButtonChangeWallpaper);
  expectSaid("Nothing is switched on below");
}

TEST_F(PanelTest, ARowThatTheDesktopCannotServeSaysWhyAndStillSwitches) {
  using Capability = simulated::SimulatedAvailability::Capability;
  const struct {
    Capability capability;
    const FeatureSwitch& feature;
    std::weak_ptr<platform::NSTextField> ViewController::*line;
  } rows[] = {
      {Capability::CoverIcons, kFeatures[0], &ViewController::lblHideDesktopIcons},
      {Capability::DoNotDisturb, kFeatures[1], &ViewController::lblDisableNotifications},
      {Capability::HideApplications, kFeatures[2], &ViewController::lblHideActiveApps},
      {Capability::MuteSpeaker, kFeatures[3], &ViewController::lblTurnOffSpeaker},
      {Capability::SetPictures, kFeatures[4], &ViewController::lblChangeWallpaper},
  };
  launch();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.feature.key);
    const std::string usual = lineOf(row.line);
    desk.availability.obstacles = {{row.capability, "nobody does it"}};
    desk.availability.changed();
    EXPECT_EQ(lineOf(row.line), "Not on this desktop: nobody does it");
    EXPECT_EQ(feature(row.feature)->accessibilityHelp(), "Not on this desktop: nobody does it");
    EXPECT_EQ(callsOf([&] { click(feature(row.feature)); }),
              (Calls{"defaults.set " + std::string(row.feature.key)}));
    EXPECT_TRUE(feature(row.feature)->isOn());
    // Not every change is told.
    desk.availability.obstacles.clear();
    desk.tray.leftClick();
    desk.tray.leftClick();
    EXPECT_EQ(lineOf(row.line), usual);
    EXPECT_EQ(feature(row.feature)->accessibilityHelp(), usual);
  }
}

TEST_F(PanelTest, EachTimeThatItIsShownItComesForwardAndTakesTheKeyboard) {
  const Calls forward{"window.show", "windows.activateApplication", "window.makeKey"};
  launchOnly();
  EXPECT_EQ(callsOf([this] { desk.loop.advance(500ms); }), forward);
  EXPECT_TRUE(panel().view()->window()->isKeyWindow());
  desk.tray.leftClick();
  EXPECT_FALSE(panel().view()->window()->isKeyWindow());
  EXPECT_EQ(callsOf([this] { desk.tray.leftClick(); }), forward);
  EXPECT_EQ(desk.screen.windowCount(), 1U);
}

}  // namespace
}  // namespace presentation
