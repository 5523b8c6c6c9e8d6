#include <gmock/gmock.h>

#include "desktop/simulated/SimulatedAutomation.h"
#include "platform/applescript/NSAppleScript.h"
#include "platform/applescript/Script.h"

namespace platform::applescript {
namespace {

using ::testing::ElementsAre;

/// A desktop on which scripts find one application, "System Events", with a process
/// "ControlCenter" and its menu bar, window and checkbox. Clicks are logged with the commands.
struct ScriptDesk {
  ScriptDesk() {
    auto& process =
        automation.addApplication("System Events").add("application process", "ControlCenter");
    process.properties.emplace("name", "ControlCenter");
    process.add("menu bar", "main").add("menu bar item", "Focus").onClick = logged("click menu");
    auto& checkbox = process.add("window", "Focus").add("checkbox", "Do Not Disturb");
    checkbox.properties = {{"value", 0}, {"role description", "a box"}};
    checkbox.onClick = logged("click checkbox");
    automation.volume = {{"input volume", 35}, {"output muted", false}};
  }
  [[nodiscard]] ScriptOutcome run(std::string_view source) {
    return runScript(source, &automation);
  }

  simulated::CallLog log;
  simulated::SimulatedAutomation automation{log};

 private:
  std::function<void(simulated::SimulatedScriptObject&)> logged(const char* deed) {
    return [this, deed](simulated::SimulatedScriptObject&) { log.add(deed); };
  }
};

std::string told(std::string_view statements) {
  return "tell application \"System Events\"\ntell application process \"ControlCenter\"\n" +
         std::string(statements) + "\nend tell\nend tell";
}

std::optional<Value> valueOf(const ScriptOutcome& outcome) {
  const auto* failure = std::get_if<ScriptFailure>(&outcome);
  EXPECT_FALSE(failure) << failure->number << " " << failure->message;
  return failure ? std::nullopt : std::get<std::optional<Value>>(outcome);
}

TEST(ScriptTest, ObjectsAreFoundByNameByIndexAndByTheirClassAlone) {
  for (const std::string script :
       {"click menu bar item \"Focus\" of menu bar 1\nclick checkbox \"Do Not Disturb\" of window",
        "tell its menu bar\n\n\tclick its menu bar item 1\nend tell\n"
        "tell its window \"Focus\"\nclick checkbox 1\nend tell"}) {
    ScriptDesk desk;
    valueOf(desk.run(told(script) + "\n"));
    EXPECT_THAT(desk.log.calls(), ElementsAre("click menu", "click checkbox")) << script;
  }
}

TEST(ScriptTest, InputVolumeIsClamped) {
  ScriptDesk desk;
  valueOf(desk.run("set volume input volume 250"));
  EXPECT_THAT(desk.log.calls(), ElementsAre("automation.setInputVolume 100"));
}

TEST(ScriptTest, ResultIsTheValueOfTheLastStatementThatRan) {
  const struct {
    std::string script;
    std::optional<Value> result;
  } rows[] = {
      {"", std::nullopt},
      {"set a to 4\n\n", 4},
      {"set a to \"two\nlines\"", "two\nlines"},
      {"set a to 5 as text", "5"},
      {"set a to (1 is not equal to 2) as text", "true"},
      {"set a to input volume of (get volume settings)", 35},
      {"set a to no such thing of (get volume settings)", std::nullopt},
      {"set a to 1\nif a is not equal to 1 then\nset a to 2\nend if", 1},
      {"set a to 1\nif a is not equal to 2 then\nset a to 2\nend if", 2},
      {"set a to 1\nset volume input volume 5", std::nullopt},
      {told("set name to 3\nset a to name"), 3},
      {told("set name to 3\nset a to its name"), "ControlCenter"},
      {told("set a to role description of checkbox 1 of window"), "a box"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.script);
    EXPECT_EQ(valueOf(ScriptDesk().run(row.script)), row.result);
  }
}

struct ErrorRow {
  std::string script;
  int number;
  /// The part of the script that the range covers; empty at its end.
  std::string blamed;
  std::string message;
};

void expectFailure(const ErrorRow& row, port::Automation* automation) {
  SCOPED_TRACE(row.script);
  const ScriptOutcome outcome = runScript(row.script, automation);
  const auto* failure = std::get_if<ScriptFailure>(&outcome);
  ASSERT_TRUE(failure);
  const SourceRange range = failure->range;
  ASSERT_LE(range.begin, range.end);
  ASSERT_LE(range.end, row.script.size());
  EXPECT_EQ(failure->number, row.number);
  EXPECT_EQ(failure->message, row.message);
  EXPECT_EQ(row.script.substr(range.begin, range.end - range.begin), row.blamed);
  if (row.blamed.empty()) {
    EXPECT_EQ(range.begin, row.script.size());
  }
}

TEST(ScriptErrorTest, TextOutsideTheGrammarBlamesTheTokenThatDoesNotFit) {
  const ErrorRow rows[] = {
      {"set x to", -2741, "", "Expected expression but found end of script."},
      {"set x 3", -2740, "3", "A number can’t go after this identifier."},
      {"set volume input volume 50 percent", -2740, "percent",
       "A identifier can’t go after this number."},
      {"end tell", -2741, "end", "Expected end of line but found “end”."},
      {"tell application \"System Events\"\nkey code 1", -2741, "",
       "Expected “end” but found end of script."},
      {"if x then\nend tell", -2741, "tell", "Expected “if” but found “tell”."},
      {"set x to 1 + 2", -2741, "+", "Expected end of line but found unknown token."},
      {"set ü to 1", -2741, "ü", "Expected variable name but found unknown token."},
      {"set x to \"open", -2741, "\"", "Expected “\"” but found end of script."},
      {"set x to 99999999999999999999", -2741, "99999999999999999999",
       "Expected expression but found unknown token."},
      {std::string("set x to \0", 10), -2741, std::string(1, '\0'),
       "Expected expression but found unknown token."},
  };
  ScriptDesk desk;
  for (const ErrorRow& row : rows) expectFailure(row, &desk.automation);
}

TEST(ScriptErrorTest, RunTimeErrorsBlameTheSmallestPartThatFailed) {
  const ErrorRow rows[] = {
      {"set a to Bee", -2753, "Bee", "The variable Bee is not defined."},
      {"set a to (get volume settings) as text", -1700, "(get volume settings) as text",
       "Can’t make a record into type text."},
      {"set volume input volume \"loud\"", -1700, "\"loud\"",
       "Can’t make \"loud\" into type integer."},
      {"display notification alert volume of (get volume settings)", -1700,
       "alert volume of (get volume settings)", "Can’t make missing value into type text."},
      {told("set a to window 1"), -1700, "window 1", "Can’t make window 1 into the expected type."},
      {told("click window \"No\""), -1728, "window \"No\"", "Can’t get window."},
      {told("tell window 7\nend tell"), -1719, "window 7", "Can’t get window."},
      {"tell application \"Nowhere\"\nend tell", -1728, "application \"Nowhere\"",
       "Can’t get application \"Nowhere\"."},
      {"click 3", -1728, "3", "Can’t get an object."},
      {"key code 3", -1708, "key code 3", "«script» doesn’t understand the “key code” message."},
  };
  ScriptDesk desk;
  for (const ErrorRow& row : rows) expectFailure(row, &desk.automation);
}

TEST(ScriptErrorTest, AFailedCommandIsBlamedAsAWholeAndNothingFollowsIt) {
  ScriptDesk desk;
  desk.automation.failure = port::ScriptError{-10000, "No sound server."};
  const std::string command = "set volume input volume 3";
  const std::string script = "set a to 1\n" + command + "\nclick it";
  expectFailure({script, -10000, command, "No sound server."}, &desk.automation);
  EXPECT_THAT(desk.log.calls(), ElementsAre("automation.setInputVolume 3"));
  expectFailure({script, -1743, command, "Not authorized to send Apple events to System Events."},
                nullptr);
}

std::string repeated(std::string_view part, int times) {
  std::string text;
  for (int time = 0; time < times; ++time) text += part;
  return text;
}

TEST(ScriptErrorTest, NestingEndsInAnErrorAndNotInTheStack) {
  const std::pair<std::string, int> rows[] = {
      {repeated("tell x\n", 20000), -2760},
      {"set x to " + repeated("(", 60000), -2706},
      {"click " + repeated("a of ", 10000) + "b", -2706},
  };
  for (const auto& [script, number] : rows) {
    const ScriptOutcome outcome = ScriptDesk().run(script);
    const auto* failure = std::get_if<ScriptFailure>(&outcome);
    ASSERT_TRUE(failure) << script.substr(0, 40);
    EXPECT_EQ(failure->number, number) << script.substr(0, 40);
  }
  EXPECT_EQ(valueOf(runScript("set x to " + repeated("(", 90) + "1" + repeated(")", 90), nullptr)),
            Value(1));
}

Dictionary informationFor(std::string_view script) {
  return errorInformation(std::get<ScriptFailure>(ScriptDesk().run(script)), script);
}

TEST(ScriptErrorTest, DictionaryPrintsInThePlatformsForm) {
  EXPECT_EQ(description(informationFor("tell application \"System Events\"\n"
                                       "    click menu bar 2\nend tell")),
            "{\n"
            "    NSAppleScriptErrorAppName = \"System Events\";\n"
            "    NSAppleScriptErrorBriefMessage = \"Can\\U2019t get menu bar.\";\n"
            "    NSAppleScriptErrorMessage = \"System Events got an error: Can\\U2019t get menu "
            "bar.\";\n"
            "    NSAppleScriptErrorNumber = \"-1719\";\n"
            "    NSAppleScriptErrorRange = \"NSRange: {43, 10}\";\n"
            "}");
}

TEST(ScriptErrorTest, RangeCountsUtf16UnitsOfTheSource) {
  const Dictionary information = informationFor("set s to \"é€𝄞\"\nset t to oops");
  EXPECT_EQ(information.at(std::string(NSAppleScriptErrorRange)), Value(NSRange{25, 4}));
}

TEST(ScriptErrorTest, OverlongOrGarbledSourceMakesNoScript) {
  EXPECT_TRUE(NSAppleScript::initWithSource(std::string(65536, ' ')));
  EXPECT_FALSE(NSAppleScript::initWithSource(std::string(65537, ' ')));
  EXPECT_FALSE(NSAppleScript::initWithSource("\"\xC3\""));
  EXPECT_FALSE(NSAppleScript::initWithSource("\xED\xA0\x80"));
}

}  // namespace
}  // namespace platform::applescript
