#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/applescript/NSAppleScript.h"
#include "platform/applescript/ScriptDesk.h"

namespace platform::applescript {
namespace {

using ::testing::HasSubstr;

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

std::string told(std::string_view statement) {
  return "tell application \"System Events\"\n" + std::string(statement) + "\nend tell";
}

TEST(ScriptErrorTest, TextOutsideTheGrammarBlamesTheTokenThatDoesNotFit) {
  const ErrorRow rows[] = {
      {"set x to", -2741, "", "Expected expression but found end of script."},
      {"set x to\n1", -2741, "\n", "Expected expression but found end of line."},
      {"set x 3", -2740, "3", "A number can’t go after this identifier."},
      {"set 3 to 4", -2741, "3", "Expected variable name or property but found number."},
      {"set x to 1 2", -2740, "2", "A number can’t go after this number."},
      {"frob it", -2741, "it", "Expected end of line but found “it”."},
      {"hello big world", -2740, "big", "A identifier can’t go after this identifier."},
      {"window \"x\"", -2740, "\"x\"", "A “\"” can’t go after this identifier."},
      {"repeat\nend repeat", -2741, "repeat", "Expected expression but found “repeat”."},
      {"end tell", -2741, "end", "Expected end of line but found “end”."},
      {"tell application \"System Events\"\nkey code 1", -2741, "",
       "Expected “end” but found end of script."},
      {"if true then\nend tell", -2741, "tell", "Expected “if” but found “tell”."},
      {"if true\nend if", -2741, "\n", "Expected “then” but found end of line."},
      {"tell it\nelse\nend tell", -2741, "else", "Expected “end” but found “else”."},
      {"set x to (1", -2741, "", "Expected “)” but found end of script."},
      {"set x to 1 as colour", -2741, "colour", "Expected class name but found identifier."},
      {"set x to 1 + 2", -2741, "+", "Expected end of line but found “+”."},
      {"set x to {1}", -2741, "{", "Expected expression but found “{”."},
      {"set x to @", -2741, "@", "Expected expression but found unknown token."},
      {"set ü to 1", -2741, "ü", "Expected variable name or property but found unknown token."},
      {"set x to ¬ 3", -2741, "¬", "Expected expression but found unknown token."},
      {"set x to \"open", -2741, "\"", "Expected “\"” but found end of script."},
      {R"(set x to "\q")", -2741, "\\", "Expected “\"” but found unknown token."},
      {"set x to 1 (* open (* *)", -2741, "(*", "Expected “*)” but found end of script."},
      {"1E999", -2741, "1E999", "Expected expression but found unknown token."},
      {std::string("set x to \0", 10), -2741, std::string(1, '\0'),
       "Expected expression but found unknown token."},
  };
  ScriptDesk desk;
  for (const ErrorRow& row : rows) expectFailure(row, &desk.automation);
}

TEST(ScriptErrorTest, RunTimeErrorsBlameTheSmallestPartThatFailed) {
  const ErrorRow rows[] = {
      {"set a to Bee", -2753, "Bee", "The variable Bee is not defined."},
      {"tell application which to click", -2753, "which", "The variable which is not defined."},
      {"(get volume settings) as text", -1700, "(get volume settings) as text",
       "Can’t make {input volume:35, output muted:false, output volume:60} into type text."},
      {"set volume input volume \"loud\"", -1700, "\"loud\"",
       "Can’t make \"loud\" into type integer."},
      {"if \"maybe\" then 1", -1700, "\"maybe\"", "Can’t make \"maybe\" into type boolean."},
      {told("display notification application process 1"), -1700, "application process 1",
       "Can’t make application process 1 into type text."},
      {told("window 1.5"), -1700, "1.5", "Can’t make 1.5 into type integer."},
      {told("set name of application process 1 to missing value"), -1700,
       "name of application process 1", "Can’t make missing value into the expected type."},
      {told("click window \"No\""), -1728, "window \"No\"", "Can’t get window."},
      {told("value of window 1 of application process 1"), -1728,
       "value of window 1 of application process 1", "Can’t get value."},
      {told("set x to role description"), -1728, "role description", "Can’t get role description."},
      {told("tell window\nend tell"), -1719, "window", "Can’t get window."},
      {"length of \"abc\"", -1728, "length of \"abc\"", "Can’t get length of \"abc\"."},
      {"tell application \"Nowhere\"\nend tell", -1728, "application \"Nowhere\"",
       "Can’t get application \"Nowhere\"."},
      {"set x to its name", -1728, "its name", "Can’t get it."},
      {told("key code 1\nclick window 7 of application process 1"), -1719,
       "window 7 of application process 1", "Can’t get window."},
      {"set size of 3 to 4", -10006, "size of 3", "Can’t set size of 3 to 4."},
      {"click", -1708, "click", "«script» doesn’t understand the “click” message."},
      {"key code 3", -1708, "key code 3", "«script» doesn’t understand the “key code” message."},
  };
  ScriptDesk desk;
  for (const ErrorRow& row : rows) expectFailure(row, &desk.automation);
}

TEST(ScriptErrorTest, FailedCommandIsBlamedAsAWhole) {
  ScriptDesk desk;
  desk.automation.failure = port::ScriptError{-10000, "No sound server."};
  for (const std::string command : {"set volume input volume 3", "display notification \"x\"",
                                    "get volume settings", "application \"System Events\""}) {
    expectFailure({"1\n" + command + "\n2", -10000, command, "No sound server."}, &desk.automation);
  }
}

TEST(ScriptErrorTest, DesktopWithoutAutomationAuthorizesNothing) {
  for (const std::string command :
       {"set volume input volume 3", "display notification \"x\"", "get volume settings",
        "key code 53", "application \"System Events\""}) {
    expectFailure({"set x to 1\n" + command, -1743, command,
                   "Not authorized to send Apple events to System Events."},
                  nullptr);
  }
  EXPECT_TRUE(std::holds_alternative<std::optional<Value>>(runScript("1 is 1", nullptr)));
}

std::string repeated(std::string_view part, int times) {
  std::string text;
  for (int time = 0; time < times; ++time) text += part;
  return text;
}

TEST(ScriptErrorTest, NestingEndsInAnErrorAndNotInTheStack) {
  const std::pair<std::string, int> rows[] = {
      {repeated("tell it\n", 20000), -2760},
      {repeated("if true then ", 4000), -2706},
      {repeated("if true then\n", 4000), -2706},
      {repeated("(", 60000), -2706},
      {repeated("a of ", 10000) + "b", -2706},
      {told(repeated("a (", 20000)), -2706},
      {repeated("get ", 15000), -2706},
      {"x" + repeated(" -", 30000), -2741},
      {repeated("(*", 30000), -2741},
  };
  for (const auto& [script, number] : rows) {
    const ScriptOutcome outcome = ScriptDesk().run(script);
    const auto* failure = std::get_if<ScriptFailure>(&outcome);
    ASSERT_TRUE(failure) << script.substr(0, 40);
    EXPECT_EQ(failure->number, number) << script.substr(0, 40);
  }
  EXPECT_TRUE(std::holds_alternative<std::optional<Value>>(
      runScript(repeated("(", 90) + "1" + repeated(")", 90), nullptr)));
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

TEST(ScriptErrorTest, OnlyAnApplicationsOwnErrorCarriesItsNameInTheMessage) {
  const std::string script = "tell application \"Locked\" to click";
  ScriptDesk desk;
  desk.automation.failure = port::ScriptError{-1743, "Not authorized."};
  const Dictionary refused = errorInformation(std::get<ScriptFailure>(desk.run(script)), script);
  EXPECT_EQ(refused.at(std::string(NSAppleScriptErrorAppName)), Value("Locked"));
  EXPECT_EQ(refused.at(std::string(NSAppleScriptErrorMessage)),
            refused.at(std::string(NSAppleScriptErrorBriefMessage)));
  EXPECT_FALSE(informationFor(told("set x to y")).contains(NSAppleScriptErrorAppName));
}

TEST(ScriptErrorTest, RangeCountsUtf16UnitsOfTheSource) {
  const Dictionary information = informationFor("set s to \"é€𝄞\" -- ü\nset t to oops");
  EXPECT_EQ(information.at(std::string(NSAppleScriptErrorRange)), Value(NSRange{30, 4}));
}

TEST(ScriptErrorTest, LongValuesAreCutInMessages) {
  const std::string long_(40000, 'x');
  const Dictionary information = informationFor("set volume input volume \"" + long_ + "\"");
  const auto message = valueOf<std::string>(information, NSAppleScriptErrorMessage);
  EXPECT_LT(message.value().size(), 300U);
  EXPECT_THAT(*message, HasSubstr("xxx…"));
}

TEST(ScriptErrorTest, OverlongOrGarbledSourceMakesNoScript) {
  EXPECT_TRUE(NSAppleScript::initWithSource(std::string(65536, ' ')));
  EXPECT_FALSE(NSAppleScript::initWithSource(std::string(65537, ' ')));
  EXPECT_FALSE(NSAppleScript::initWithSource("\"\xC3\""));
  EXPECT_FALSE(NSAppleScript::initWithSource("\xED\xA0\x80"));
}

TEST(ValueDescriptionTest, NestedContainersAreIndentedByLevel) {
  const Dictionary inner{{"deep", Dictionary{}}, {"n", 1.5}};
  const Dictionary outer{{"a b", "x_y\n\x01"}, {"list", Array{true, "", Array{}}}, {"sub", inner}};
  EXPECT_EQ(description(outer),
            "{\n"
            "    \"a b\" = \"x_y\\n\\001\";\n"
            "    list =     (\n"
            "        1,\n"
            "        \"\",\n"
            "        (\n"
            "        )\n"
            "    );\n"
            "    sub =     {\n"
            "        deep =         {\n"
            "        };\n"
            "        n = \"1.5\";\n"
            "    };\n"
            "}");
}

}  // namespace
}  // namespace platform::applescript
