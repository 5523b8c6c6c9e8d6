#include "presentation/ViewController.h"

#include <algorithm>
#include <array>

#include "presentation/FeatureTest.h"

namespace presentation {
namespace {

using namespace std::chrono_literals;
using controls::CToggleButton;
using platform::Array;
using platform::Dictionary;
using platform::Value;

using Capability = simulated::SimulatedAvailability::Capability;

struct FeatureSwitch {
  std::int64_t tag;
  std::string_view key;
  const char* name;  ///< as it is written and spoken
  std::weak_ptr<CToggleButton> ViewController::*outlet;
  std::weak_ptr<platform::NSTextField> ViewController::*line;
  Capability capability;
};

constexpr std::array<FeatureSwitch, 5> kFeatures{{
    {11, "kUserdefaultsToggleDesktopIcons", "Hide desktop icons",
     &ViewController::toggleButtonHideDesktopIcons, &ViewController::lblHideDesktopIcons,
     Capability::CoverIcons},
    {22, "kUserdefaultsToggleDnd", "Do Not Disturb",
     &ViewController::toggleButtonDisableNotifications, &ViewController::lblDisableNotifications,
     Capability::DoNotDisturb},
    {33, "kUserdefaultsToggleHideActiveApps", "Hide other applications",
     &ViewController::toggleButtonHideActiveApps, &ViewController::lblHideActiveApps,
     Capability::HideApplications},
    {44, "kUserdefaultsToggleSpeakerOff", "Mute speaker",
     &ViewController::toggleButtonTurnOffSpeaker, &ViewController::lblTurnOffSpeaker,
     Capability::MuteSpeaker},
    {55, "kUserdefaultsToggleWallpaper", "Change wallpaper",
     &ViewController::toggleButtonChangeWallpaper, &ViewController::lblChangeWallpaper,
     Capability::SetPictures},
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
  /// To those who hear it, and beside the switch to those who read.
  static void expectNamed(const CToggleButton& toggle, const std::string& name) {
    EXPECT_EQ(toggle.accessibilityLabel(), name);
    EXPECT_TRUE(showsText(*toggle.superview(), name)) << name;
  }
  static bool showsText(const platform::NSView& view, const std::string& text) {
    const auto* field = dynamic_cast<const platform::NSTextField*>(&view);
    return (field != nullptr && field->stringValue() == text) ||
           std::ranges::any_of(view.subviews(),
                               [&](const auto& inside) { return showsText(*inside, text); });
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
  expectNamed(*master(), "Presentation mode");
  EXPECT_EQ(desk.tray.toolTip(), "Calmdeck: presentation mode is off");
  for (const FeatureSwitch& row : kFeatures) {
    EXPECT_EQ(feature(row)->statetag, row.tag);
    EXPECT_FALSE(feature(row)->isOn()) << row.key;
    expectNamed(*feature(row), row.name);
  }
  EXPECT_TRUE(panel().lblComingSoon.lock()->isHidden());
  EXPECT_EQ(callsOf([this] { click(panel().toggleButtonPresentationMode); }),
            (Calls{"statusItem.setImage logo-active-small"}));
  EXPECT_EQ(desk.tray.toolTip(), "Calmdeck: presentation mode is on");
  click(panel().toggleButtonPresentationMode);
  EXPECT_EQ(desk.tray.toolTip(), "Calmdeck: presentation mode is off");
}

TEST_F(PanelTest, StoredSwitchesAreRestoredAndNothingIsApplied) {
  const std::array<Value, 5> stored{true, "true", 1, true, Array{true}};
  for (std::size_t i = 0; i < stored.size(); ++i) store(kFeatures.at(i).key, stored.at(i));
  launch();
  desk.loop.advance(300ms);
  for (std::size_t i = 0; i < stored.size(); ++i) {
    const FeatureSwitch& row = kFeatures.at(i);
    const bool isOn = stored.at(i) == Value(true);
    EXPECT_EQ(feature(row)->isOn(), isOn) << row.key;
    EXPECT_EQ(feature(row)->circle()->presentationFrame(desk.loop.now()).x, isOn ? 20 : 2);
  }
  EXPECT_FALSE(master()->isOn());
  EXPECT_EQ(desk.log.calls("audio"), Calls{});
  EXPECT_EQ(desk.log.calls("defaults"), (Calls{"defaults.set kUserdeaultsLaunchAtLogin"}));
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
  launch();
  for (const FeatureSwitch& row : kFeatures) {
    SCOPED_TRACE(row.name);
    const std::string usual = lineOf(row.line);
    desk.availability.obstacles = {{row.capability, "nobody does it"}};
    desk.availability.changed();
    EXPECT_EQ(lineOf(row.line), "Not on this desktop: nobody does it");
    EXPECT_EQ(feature(row)->accessibilityHelp(), "Not on this desktop: nobody does it");
    EXPECT_EQ(callsOf([&] { click(feature(row)); }),
              (Calls{"defaults.set " + std::string(row.key)}));
    EXPECT_TRUE(feature(row)->isOn());
    // Not every change is told.
    desk.availability.obstacles.clear();
    desk.tray.leftClick();
    desk.tray.leftClick();
    EXPECT_EQ(lineOf(row.line), usual);
    EXPECT_EQ(feature(row)->accessibilityHelp(), usual);
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
  EXPECT_EQ(callsOf([this] { desk.userSession.reopen(); }), Calls{"window.show"})
      << "shown already";
  EXPECT_EQ(desk.screen.windowCount(), 1U);
}

}  // namespace
}  // namespace presentation
