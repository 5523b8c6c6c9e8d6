#include <gmock/gmock.h>

#include "presentation/FeatureTest.h"
#include "presentation/FocusScript.h"

namespace presentation {
namespace {

using platform::Dictionary;
using platform::Value;
using platform::port::SystemVersion;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

const std::string kDomain = "com.apple.notificationcenterui";
const Calls kPublishing{
    "preferences.synchronize " + kDomain,
    "distributedNotifications.post com.apple.notificationcenterui.dndprefs_changed"};

Calls published(Calls calls) {
  for (std::string& call : calls) call.insert(call.find(' ') + 1, kDomain + " ");
  calls.insert(calls.end(), kPublishing.begin(), kPublishing.end());
  return calls;
}

const Calls kTurnOn = published(
    {"preferences.set dndStart", "preferences.set dndEnd", "preferences.set doNotDisturb"});
const Calls kTurnOff = published(
    {"preferences.remove dndStart", "preferences.remove dndEnd", "preferences.set doNotDisturb"});
const Dictionary kQuiet{{"dndStart", 0.0}, {"dndEnd", 1440.0}, {"doNotDisturb", true}};

class DoNotDisturbTest : public FeatureTest {
 protected:
  void launchWithDoNotDisturb() { launchWith({shared::kUserdefaultsToggleDnd}); }
};

TEST_F(DoNotDisturbTest, TheScriptIsThisTextForBothStates) {
  const std::string_view on =
      "    tell application \"System Events\"\n"
      "        tell its application process \"ControlCenter\"\n"
      "            tell its menu bar 1\n"
      "                click its menu bar item \"Focus\"\n"
      "            end tell\n"
      "            tell its window\n"
      "                set currentValue to value of checkbox \"Do Not Disturb\"\n"
      "                set currentState to currentValue as text\n"
      "                if currentState is not equal to \"1\" then\n"
      "                    click checkbox \"Do Not Disturb\"\n"
      "                end if\n"
      "            end tell\n"
      "        end tell\n"
      "        key code 53\n"
      "    end tell\n"
      "\n";
  EXPECT_EQ(focusScript("1"), on);
  EXPECT_EQ(on.size(), 551U);
  std::string off(on);
  off.replace(off.find("\"1\""), 3, "\"0\"");
  EXPECT_EQ(focusScript("0"), off);
}

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
    EXPECT_THAT(callsOf([this] { clickMaster(); }, "automation"),
                ElementsAre("automation.keyCode 53"));
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

TEST_F(DoNotDisturbTest, TheRunningSystemsVersionDecides) {
  addControlCenter();
  launch();
  const struct {
    SystemVersion version;
    bool byScript;
  } rows[] = {{{10, 15, 7}, false}, {{11, 7, 10}, false}, {{11, 99, 99}, false},
              {{12, 0, 0}, true},   {{12, 0, 1}, true},   {{13, 0, 0}, true}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::to_string(row.version.major) + "." + std::to_string(row.version.minor));
    desk.version = row.version;
    for (const auto act :
         {&ViewController::turnOnDoNotDisturb, &ViewController::turnOffDoNotDisturb}) {
      const bool turnsOn = act == &ViewController::turnOnDoNotDisturb;
      EXPECT_EQ(callsOf([&] { (panel().*act)(); }), row.byScript ? Calls{"automation.keyCode 53"}
                                                    : turnsOn    ? kTurnOn
                                                                 : kTurnOff);
    }
  }
}

TEST_F(DoNotDisturbTest, TheWholeDayIsStoredAndTakenAwayAgain) {
  desk.version = {11, 7, 10};
  desk.preferences.values = {{"dndStart", 1260.0}, {"other", "stays"}};
  launchWithDoNotDisturb();
  EXPECT_EQ(callsOf([this] { clickMaster(); }, "preferences"),
            Calls(kTurnOn.begin(), kTurnOn.end() - 1));
  Dictionary expected = kQuiet;
  expected.emplace("other", "stays");
  EXPECT_EQ(desk.preferences.stored, expected);
  clickMaster();
  EXPECT_EQ(desk.preferences.stored, (Dictionary{{"doNotDisturb", false}, {"other", "stays"}}));
  EXPECT_THAT(desk.output.lines, IsEmpty());
}

TEST_F(DoNotDisturbTest, PreferencesThatAreNotStoredAreAnnouncedAllTheSame) {
  desk.version = {11, 0, 0};
  desk.preferences.synchronizes = false;
  launchWithDoNotDisturb();
  clickMaster();
  EXPECT_EQ(desk.log.calls().back(), kPublishing.back());
  EXPECT_THAT(desk.output.lines, IsEmpty());
  desk.hasPreferences = false;
  EXPECT_EQ(callsOf([this] { clickMaster(); }), (Calls{"statusItem.setImage logo-initial-small"}));
}

}  // namespace
}  // namespace presentation
