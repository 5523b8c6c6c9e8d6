#include "shared/ScriptRunner.h"

#include <gmock/gmock.h>

#include "support/DeskTest.h"

namespace shared {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

using ScriptRunnerTest = tests::DeskTest;

TEST_F(ScriptRunnerTest, AScriptThatWorksPrintsNothing) {
  runAppleScript("set volume input volume 30");
  EXPECT_THAT(desk.output.lines, IsEmpty());
  EXPECT_THAT(desk.log.calls(), ElementsAre("automation.setInputVolume 30"));
}

TEST_F(ScriptRunnerTest, ASyntaxErrorIsPrintedOnceAndNothingRuns) {
  runAppleScript("set volume input volume 30\nset to to");
  EXPECT_THAT(desk.output.lines,
              ElementsAre(AllOf(StartsWith("Optional({\n"), EndsWith("\n})"),
                                HasSubstr("\n    NSAppleScriptErrorNumber = \"-2741\";\n"),
                                HasSubstr("\n    NSAppleScriptErrorMessage = "),
                                HasSubstr("\n    NSAppleScriptErrorBriefMessage = "),
                                HasSubstr("\n    NSAppleScriptErrorRange = \"NSRange: {"))));
  EXPECT_THAT(desk.log.calls(), IsEmpty());
}

TEST_F(ScriptRunnerTest, ATextThatMakesNoScriptDoesNothing) {
  runAppleScript("\xff");
  EXPECT_THAT(desk.output.lines, IsEmpty());
}

}  // namespace
}  // namespace shared
