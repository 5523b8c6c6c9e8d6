#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/applescript/ScriptDesk.h"

namespace platform::applescript {
namespace {

using ::testing::ElementsAre;

std::optional<Value> valueOf(const ScriptOutcome& outcome) {
  const auto* failure = std::get_if<ScriptFailure>(&outcome);
  EXPECT_FALSE(failure) << failure->number << " " << failure->message;
  return failure ? std::nullopt : std::get<std::optional<Value>>(outcome);
}

std::optional<Value> result(std::string_view source) {
  return valueOf(ScriptDesk().run(source));
}

TEST(ScriptRunTest, OneWishInOtherWordsDoesTheSame) {
  const char* const scripts[] = {
      // Other variables, chains, no nesting.
      "tell application \"System Events\"\n"
      "  set p to application process \"ControlCenter\"\n"
      "  click menu bar item \"Focus\" of menu bar 1 of p\n"
      "  set box to checkbox 1 of window 1 of p\n"
      "  if value of box as integer = 0 then click box\n"
      "  key code 53 \n"
      "end tell",
      // Names in variables.
      "set appName to \"System Events\"\r\nset boxName to \"Do Not Disturb\"\r\n"
      "TELL APPLICATION appName\r\n\tTELL (application process \"ControlCenter\")\r\n"
      "\t\tclick menu bar item (\"Focus\") of menu bar (1)\r\n"
      "\t\tif value of checkbox boxName of window equals 1 then\r\n\t\telse\r\n"
      "\t\t\ttell checkbox boxName of its window to click\r\n\t\tend if\r\n\tend tell\r\n"
      "\tkey code 53\r\nEND\r\n",
      // Continued lines and comments.
      "(* outer (* inner *) *)\rtell application ¬ \n \"System Events\" -- here\r"
      "# nothing\r tell application process \"ControlCenter\"\r"
      " click menu bar item 1 of menu bar 1\r tell checkbox 1 of window \"Focus\"\r"
      " if value ≠ 1 then ¬\r\n click it\r end tell\r end tell\r key code 53\r end tell",
  };
  for (const char* script : scripts) {
    SCOPED_TRACE(script);
    ScriptDesk desk;
    valueOf(desk.run(script));
    EXPECT_THAT(desk.log.calls(),
                ElementsAre("click menu", "click checkbox", "automation.keyCode 53"));
  }
}

TEST(ScriptRunTest, InputVolumeIsClampedAndTakesWhateverReadsAsANumber) {
  const std::pair<const char*, const char*> rows[] = {
      {"set volume input volume 250", "100"},
      {"set volume input volume -3", "0"},
      {"set loud to \"41\"\nSet Volume Input Volume LOUD", "41"},
      {"set volume input volume 7.6", "8"},
      {"tell application \"System Events\" to set volume input volume (1E+1)", "10"},
  };
  for (const auto& [script, level] : rows) {
    ScriptDesk desk;
    valueOf(desk.run(script));
    EXPECT_THAT(desk.log.calls(), ElementsAre("automation.setInputVolume " + std::string(level)));
  }
}

struct ResultRow {
  const char* script;
  std::optional<Value> result;
};

std::string told(std::string_view statements) {
  return "tell application \"System Events\" to tell application process \"ControlCenter\"\n" +
         std::string(statements) + "\nend tell";
}

TEST(ScriptRunTest, ResultIsTheValueOfTheLastStatementThatRan) {
  const ResultRow rows[] = {
      {"", std::nullopt},
      {"set a to 4\n\n", 4},
      {R"("a\"b\\c\n\t\r")", "a\"b\\c\n\t\r"},
      {"\"two\nlines\"", "two\nlines"},
      {"99999999999999999999", 1e20},
      {"2.5", 2.5},
      {"-7", -7},
      {"get 5 as text", "5"},
      {"2.0 as string", "2.0"},
      {"true as text", "true"},
      {"missing value as text", "missing value"},
      {"missing value", std::nullopt},
      {"\" 12 \" as integer", 12},
      {"1 = 1.0", true},
      {"1 is \"1\"", false},
      {R"("Ab" equals "aB")", true},
      {"1 is not equal to 2", true},
      {"1 is equal 2", false},
      {"1 does not equal 2", true},
      {"1 /= 1", false},
      {"\"x\" is not missing value", true},
      {"(get volume settings) is (get volume settings)", true},
      {"set s to get volume settings\nset OUT to output muted of S\nout as text", "false"},
      {"no such thing of (get volume settings)", std::nullopt},
      {"input volume of (get volume settings) is missing value", false},
      {"set x to 1\nif x is 2 then\n\"two\"\nelse if x is 1 then\n\"one\"\nelse\n\"more\"\nend if",
       "one"},
      {"set x to 3\nif x is 2 then\n\"two\"\nelse\n\"more\"\nend", "more"},
      {"\"kept\"\nif false then\n\"lost\"\nend if", "kept"},
      {"\"gone\"\nset volume input volume 5", std::nullopt},
      {"tell (get volume settings) to set v to its output volume", 60},
  };
  for (const ResultRow& row : rows) {
    SCOPED_TRACE(row.script);
    EXPECT_EQ(result(row.script), row.result);
  }
}

TEST(ScriptRunTest, NamesAreVariablesThenPropertiesThenElements) {
  EXPECT_EQ(result(told("set n to name")), Value("ControlCenter"));
  EXPECT_EQ(result(told("set name to 3\nname")), Value(3));
  EXPECT_EQ(result(told("set name to 3\nits name")), Value("ControlCenter"));
  EXPECT_EQ(result(told("role description of checkbox 1 of window")), Value("a box"));
  EXPECT_EQ(result(told("tell window\nset level to input volume\nend tell")), Value(12));
  EXPECT_EQ(result(told("set w to its window\nvalue of checkbox 1 of w")), Value(0));
  EXPECT_EQ(result(told("window")), std::nullopt);
}

TEST(ScriptRunTest, SettablePropertiesAreSetAndPlainNamesAreNot) {
  ScriptDesk desk;
  valueOf(
      desk.run(told("set value of checkbox 1 of window 1 to true\n"
                    "tell window 1\nset its input volume to 3\nset value to 9\nend tell")));
  EXPECT_EQ(desk.checkbox->properties.at("value"), Value(true));
  EXPECT_THAT(desk.window->properties, ElementsAre(std::pair("input volume", Value(3))));
}

}  // namespace
}  // namespace platform::applescript
