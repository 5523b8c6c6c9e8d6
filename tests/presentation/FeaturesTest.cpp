#include <gmock/gmock.h>

#include "presentation/FeatureTest.h"

namespace presentation {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;
using Id = platform::port::ApplicationId;
using Policy = platform::NSApplicationActivationPolicy;
using platform::Dictionary;
using platform::Value;

const std::string kDomain = "com.apple.notificationcenterui";
const std::string kSynchronized = "preferences.synchronize " + kDomain;
const std::string kAnnounced = "distributedNotifications.post " + kDomain + ".dndprefs_changed";
const std::string kSet = "preferences.set " + kDomain;
const std::string kRemove = "preferences.remove " + kDomain;
const Calls kTurnOn{kSet + " dndStart", kSet + " dndEnd", kSet + " doNotDisturb", kSynchronized,
                    kAnnounced};
const Calls kByScript{"automation.keyCode 53"};
const Calls kTurnOff{kRemove + " dndStart", kRemove + " dndEnd", kSet + " doNotDisturb",
                     kSynchronized, kAnnounced};

class DoNotDisturbTest : public FeatureTest {
 protected:
  void launchWithDoNotDisturb() { launchWith({shared::kUserdefaultsToggleDnd}); }
};

TEST_F(DoNotDisturbTest, TheCheckboxIsClickedOnlyIfItIsNotAsWanted) {
  addControlCenter();
  launchWithDoNotDisturb();
  const struct {
    int before;
    bool turnsOn;
    int clicks;
  } rows[] = {{0, true, 1}, {1, false, 1}, {1, true, 0}, {0, false, 0}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.before);
    checkbox->properties.insert_or_assign("value", row.before);
    menu->clicks = checkbox->clicks = 0;
    EXPECT_THAT(callsOf([this] { clickMaster(); }, "automation"), kByScript);
    EXPECT_EQ(menu->clicks, 1);
    EXPECT_EQ(checkbox->clicks, row.clicks);
    EXPECT_EQ(checkbox->properties.at("value"), Value(row.turnsOn ? 1 : 0));
  }
  EXPECT_THAT(desk.output.lines, IsEmpty());
  EXPECT_THAT(desk.preferences.values, IsEmpty());
}

TEST_F(DoNotDisturbTest, AScriptThatFailsIsPrintedAndTheModeGoesOn) {
  addSpeakers();
  addControlCenter();
  desk.desktop.systemVersion = {13, 0, 0};  // by the script as in 12
  launchWith({shared::kUserdefaultsToggleDnd, shared::kUserdefaultsToggleSpeakerOff});
  checkbox->properties.clear();
  clickMaster();
  ASSERT_FALSE(desk.output.lines.empty());
  EXPECT_THAT(desk.output.lines.front(),
              AllOf(StartsWith("Optional({\n"), HasSubstr("NSAppleScriptErrorNumber = \"-1728\"")));
  EXPECT_EQ(desk.output.lines.at(1), "device");
  // The menu is open and stays so: nothing is pressed after the failure.
  EXPECT_EQ(menu->clicks, 1);
  EXPECT_THAT(desk.log.calls("automation"), IsEmpty());
  EXPECT_EQ(desk.audio.isMuted(42), std::optional(true));
  EXPECT_TRUE(panel().toggleButtonDisableNotifications.lock()->isOn());
}

TEST_F(DoNotDisturbTest, UpToElevenTheWholeDayIsStoredAndTakenAwayAgain) {
  desk.desktop.systemVersion = {11, 99, 99};
  desk.preferences.values = {{"dndStart", 1260.0}, {"other", "stays"}};
  launchWithDoNotDisturb();
  clickMaster();
  EXPECT_EQ(callsOf([this] { panel().turnOnDoNotDisturb(); }), kTurnOn);
  EXPECT_EQ(
      desk.preferences.stored,
      (Dictionary{
          {"dndStart", 0.0}, {"dndEnd", 1440.0}, {"doNotDisturb", true}, {"other", "stays"}}));
  EXPECT_EQ(callsOf([this] { panel().turnOffDoNotDisturb(); }), kTurnOff);
  EXPECT_EQ(desk.preferences.stored, (Dictionary{{"doNotDisturb", false}, {"other", "stays"}}));
  clickMaster();
  // Preferences that are not stored are announced all the same.
  desk.preferences.synchronizes = false;
  EXPECT_EQ(callsOf([this] { clickMaster(); }).back(), kAnnounced);
  EXPECT_THAT(desk.output.lines, IsEmpty());
  desk.desktop.foreignPreferences = nullptr;
  desk.desktop.distributedNotifications = nullptr;
  EXPECT_EQ(callsOf([this] { clickMaster(); }), (Calls{"statusItem.setImage logo-initial-small"}));
}

class HidingApplicationsTest : public FeatureTest {
 protected:
  void add(Id id, std::optional<std::string> name, Policy policy = Policy::Regular) {
    desk.applications.list.push_back({id, std::move(name), policy});
  }
  void launchHiding() { launchWith({shared::kUserdefaultsToggleHideActiveApps}); }
};

TEST_F(HidingApplicationsTest, FinderIsSparedByItsNameAlone) {
  const std::optional<std::string> spared[] = {"Finder", "finder", "FINDER", "fInDeR"};
  const std::optional<std::string> hidden[] = {
      std::nullopt, "",          "Finder ",       " Finder",      "Finders",
      "Finde",      "My Finder", "F\xc4\xb1nder", "F\xc4\xb0NDER"};
  Id id = 0;
  for (const auto& name : spared) add(++id, name);
  const Id lastSpared = id;
  for (const auto& name : hidden) add(++id, name);
  launchHiding();
  clickMaster();
  for (const auto& application : desk.applications.list) {
    EXPECT_EQ(desk.applications.isHidden(application.id), application.id > lastSpared)
        << application.localizedName.value_or("no name");
  }
}

TEST_F(HidingApplicationsTest, OrdinaryOnesAreHiddenInTheirOrderAndTheSameOnesOnceMore) {
  add(5, "Mail");
  add(2, "Dock", Policy::Accessory);
  add(9, "Terminal");
  add(3, "Agent", Policy::Prohibited);
  add(4, "Agent");
  launchHiding();
  const Calls hides{"applications.hide 5", "applications.hide 9", "applications.hide 4"};
  EXPECT_EQ(callsOf([this] { pressMaster(); }, "applications"), hides);
  add(6, "Late");
  desk.applications.list.erase(desk.applications.list.begin());
  desk.applications.hidden.clear();  // the user brings them forward
  EXPECT_EQ(callsOf([this] { desk.loop.settle(); }), hides);
  EXPECT_THAT(desk.applications.hidden, UnorderedElementsAre(9, 4));
}

TEST_F(HidingApplicationsTest, EveryHiddenOrdinaryApplicationIsShownWhoeverHidIt) {
  add(1, "Mail");
  add(2, "Finder");
  add(3, "Agent", Policy::Accessory);
  add(4, "Terminal");
  desk.applications.hidden = {2, 3, 4};
  launchHiding();
  clickMaster();
  add(5, "Late");
  add(6, "Later");
  desk.applications.hidden.insert(6);
  desk.applications.hidden.erase(1);  // brought forward by the user
  EXPECT_EQ(callsOf([this] { clickMaster(); }, "applications"),
            (Calls{"applications.unhide 2", "applications.unhide 4", "applications.unhide 6"}));
  EXPECT_THAT(desk.applications.hidden, UnorderedElementsAre(3));
}

}  // namespace
}  // namespace presentation
