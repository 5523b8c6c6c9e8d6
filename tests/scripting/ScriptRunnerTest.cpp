#include "scripting/ScriptRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/simulated/SimulatedDesktop.h"
#include "platform/Runtime.h"

namespace scripting {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class ScriptRunnerTest : public ::testing::Test {
 protected:
  static auto errorWithNumber(const std::string& number) {
    return ElementsAre(AllOf(StartsWith("Optional({\n"), EndsWith("\n})"),
                             HasSubstr("\n    NSAppleScriptErrorNumber = \"" + number + "\";\n"),
                             HasSubstr("\n    NSAppleScriptErrorMessage = "),
                             HasSubstr("\n    NSAppleScriptErrorBriefMessage = "),
                             HasSubstr("\n    NSAppleScriptErrorRange = \"NSRange: {")));
  }

  simulated::SimulatedDesktop desk;
  platform::Runtime runtime{desk};
};

TEST_F(ScriptRunnerTest, AScriptThatWorksPrintsNothing) {
  runAppleScript("set volume input volume 30");
  EXPECT_THAT(desk.output.lines, IsEmpty());
  EXPECT_THAT(desk.log.calls(), ElementsAre("automation.setInputVolume 30"));
}

TEST_F(ScriptRunnerTest, ASyntaxErrorIsPrintedOnceAndNothingRuns) {
  runAppleScript("set volume input volume 30\nset to to");
  EXPECT_THAT(desk.output.lines, errorWithNumber("-2741"));
  EXPECT_THAT(desk.log.calls(), IsEmpty());
}

TEST_F(ScriptRunnerTest, AFailureOfTheDesktopIsPrinted) {
  desk.scripts.failure = {-10000, "The sound is gone."};
  runAppleScript("set volume input volume 30");
  EXPECT_THAT(desk.output.lines, errorWithNumber("-10000"));
}

TEST_F(ScriptRunnerTest, WithoutAutomationEveryCommandIsRefused) {
  desk.hasAutomation = false;
  runAppleScript("set volume input volume 30");
  EXPECT_THAT(desk.output.lines, errorWithNumber("-1743"));
}

TEST_F(ScriptRunnerTest, ATextThatMakesNoScriptDoesNothing) {
  runAppleScript("\xff");
  EXPECT_THAT(desk.output.lines, IsEmpty());
}

}  // namespace
}  // namespace scripting
