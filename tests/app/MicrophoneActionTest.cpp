#include "app/MicrophoneAction.h"

#include <gmock/gmock.h>

#include "platform/carbon/KeyCodes.h"
#include "shared/SettingsKeys.h"
#include "support/ApplicationTest.h"

namespace app {
namespace {

using platform::Array;
using platform::Value;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class MicrophoneActionTest : public tests::ApplicationTest {
 protected:
  MicrophoneActionTest() {
    desk.scripts.addApplication("System Events");
    store(shared::kuserdefault_MuteMicShortcut, "m");
    store(shared::kuserdefault_MuteMicFlag, Array{14, 11});
  }
  void setLevel(Value level) {
    desk.scripts.volume.insert_or_assign("input volume", std::move(level));
  }
  [[nodiscard]] Value level() const { return desk.scripts.volume.at("input volume"); }
  /// The user presses the shortcut; logs begin anew.
  void press() {
    desk.output.lines.clear();
    desk.log.clear();
    desk.keys.press({platform::kVK_ANSI_M, platform::shiftKey | platform::cmdKey});
  }
  [[nodiscard]] std::vector<std::string> deeds() const { return desk.log.calls("automation"); }
  static auto errorWithNumber(const std::string& number) {
    return AllOf(StartsWith("{\n"),
                 HasSubstr("\n    NSAppleScriptErrorNumber = \"" + number + "\";\n"));
  }
};

TEST_F(MicrophoneActionTest, APressMutesAndTheNextGivesTheLevelBack) {
  setLevel(35);
  launch();
  press();
  EXPECT_THAT(
      desk.log.entries(),
      ElementsAre("print Pressed at 1970-01-01 00:00:00 +0000", "print mic value is", "print 35",
                  "automation.setInputVolume 0", "automation.displayNotification Mic muted"));
  press();
  EXPECT_THAT(desk.log.entries(), ElementsAre(StartsWith("print Pressed at "), "print mic value is",
                                              "print 0", "automation.setInputVolume 35",
                                              "automation.displayNotification Mic unmuted"));
  EXPECT_EQ(level(), Value(35));
}

TEST_F(MicrophoneActionTest, WhoeverSilencedItTheLastLevelThatWasSeenComesBack) {
  setLevel(0);
  launch();
  press();
  EXPECT_EQ(level(), Value(100));  // none was seen yet
  setLevel(60);
  press();
  setLevel(80);  // the user turns it up
  press();
  EXPECT_EQ(level(), Value(0));
  press();
  EXPECT_EQ(level(), Value(80));
  setLevel(0);  // and down by hand
  press();
  EXPECT_EQ(level(), Value(80));
}

TEST_F(MicrophoneActionTest, ARestartForgetsTheLevel) {
  setLevel(60);
  launch();
  press();
  relaunch();
  press();
  EXPECT_EQ(level(), Value(100));
}

TEST_F(MicrophoneActionTest, OnlyTheTextZeroIsSilence) {
  setLevel("00");
  launch();
  press();
  EXPECT_THAT(deeds(), ElementsAre("automation.setInputVolume 0",
                                   "automation.displayNotification Mic muted"));
}

TEST_F(MicrophoneActionTest, WithoutALevelNothingIsDone) {
  launch();
  // No microphone, or a record that has no text.
  for (const auto& volume : {platform::Dictionary{{"output volume", 20}},
                             platform::Dictionary{{"input volume", platform::Dictionary{}}}}) {
    desk.scripts.volume = volume;
    press();
    EXPECT_THAT(desk.output.lines, ElementsAre(StartsWith("Pressed at ")));
    EXPECT_THAT(deeds(), IsEmpty());
  }
  desk.scripts.failure = {-10000, "The sound is gone."};
  press();
  EXPECT_THAT(desk.output.lines, ElementsAre(StartsWith("Pressed at "), errorWithNumber("-10000")));
  desk.hasAutomation = false;
  press();
  EXPECT_THAT(desk.output.lines, ElementsAre(StartsWith("Pressed at "), errorWithNumber("-1743")));
  EXPECT_THAT(deeds(), IsEmpty());
}

TEST_F(MicrophoneActionTest, ALevelThatCannotBeSetIsPrintedAndWasStillSeen) {
  setLevel(35);
  desk.scripts.setInputVolumeFailure = {-10000, "The microphone does not listen."};
  launch();
  press();
  EXPECT_THAT(desk.output.lines, ElementsAre(StartsWith("Pressed at "), "mic value is", "35",
                                             errorWithNumber("-10000")));
  EXPECT_THAT(deeds(), ElementsAre("automation.setInputVolume 0"));
  desk.scripts.setInputVolumeFailure.reset();
  setLevel(0);
  press();
  EXPECT_EQ(level(), Value(35));
}

}  // namespace
}  // namespace app
