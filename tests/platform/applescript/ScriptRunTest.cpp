#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FakeAutomation.h"
#include "platform/applescript/RunScript.h"

namespace platform::applescript {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

std::string failureText(const ScriptOutcome& outcome) {
  const auto* failure = std::get_if<ScriptFailure>(&outcome);
  return failure ? std::to_string(failure->number) + " " + failure->message : "";
}

std::optional<Value> valueOf(const ScriptOutcome& outcome) {
  const auto* value = std::get_if<std::optional<Value>>(&outcome);
  EXPECT_TRUE(value) << failureText(outcome);
  return value ? *value : std::nullopt;
}

std::optional<Value> result(std::string_view source) {
  FakeAutomation automation;
  return valueOf(runScript(source, &automation));
}

// Switches the checkbox to `wanted`, in the words of the panel's own switch.
std::string focusScript(std::string_view wanted) {
  return "    tell application \"System Events\"\n"
         "        tell its application process \"ControlCenter\"\n"
         "            tell its menu bar 1\n"
         "                click its menu bar item \"Focus\"\n"
         "            end tell\n"
         "            tell its window\n"
         "                set currentValue to value of checkbox \"Do Not Disturb\"\n"
         "                set currentState to currentValue as text\n"
         "                if currentState is not equal to \"" +
         std::string(wanted) +
         "\" then\n"
         "                    click checkbox \"Do Not Disturb\"\n"
         "                end if\n"
         "            end tell\n"
         "        end tell\n"
         "        key code 53\n"
         "    end tell\n\n";
}

struct FocusRow {
  const char* name;
  std::string script;
  int before;
  bool clicks;
};

// The same wish said in other words.
const FocusRow kFocusRows[] = {
    {"off to on", focusScript("1"), 0, true},
    {"on to on", focusScript("1"), 1, false},
    {"on to off", focusScript("0"), 1, true},
    {"off to off", focusScript("0"), 0, false},
    {"other variables, of chains, no nesting",
     "tell application \"System Events\"\n"
     "  set p to application process \"ControlCenter\"\n"
     "  click menu bar item \"Focus\" of menu bar 1 of p\n"
     "  set box to checkbox 1 of window 1 of p\n"
     "  if value of box as integer = 0 then click box\n"
     "  key code 50 \n"
     "end tell",
     0, true},
    {"names in variables",
     "set appName to \"System Events\"\r\nset boxName to \"Do Not Disturb\"\r\n"
     "TELL APPLICATION appName\r\n\tTELL (application process \"ControlCenter\")\r\n"
     "\t\tclick menu bar item (\"Focus\") of menu bar (1)\r\n"
     "\t\tif value of checkbox boxName of window equals 1 then\r\n\t\telse\r\n"
     "\t\t\ttell checkbox boxName of its window to click\r\n\t\tend if\r\n\tend tell\r\n"
     "\tkey code 53\r\nEND\r\n",
     0, true},
    {"continued lines and comments",
     "(* outer (* inner *) *)\rtell application ¬ \n \"System Events\" -- here\r"
     "# nothing\r tell application process \"ControlCenter\"\r"
     " click menu bar item 1 of menu bar 1\r tell checkbox 1 of window \"Focus\"\r"
     " if value ≠ 1 then ¬\r\n click it\r end tell\r end tell\r key code 53\r end tell",
     0, true},
};

TEST(ScriptRunTest, ClicksTheCheckboxOnlyIfItIsInTheOtherState) {
  for (FocusRow row : kFocusRows) {
    SCOPED_TRACE(row.name);
    FakeAutomation automation;
    automation.checkbox->properties.insert_or_assign("value", row.before);
    // This row presses another key than the rest.
    const std::string key =
        row.script.find("key code 50") == std::string::npos ? "key 53" : "key 50";
    EXPECT_EQ(failureText(runScript(row.script, &automation)), "");
    Deeds wanted{"click menu bar item Focus", key};
    if (row.clicks) wanted.insert(wanted.begin() + 1, "click checkbox Do Not Disturb");
    EXPECT_THAT(automation.deeds, ElementsAreArray(wanted));
  }
}

TEST(ScriptRunTest, MicrophoneScriptsReadMuteAndRestoreTheLevel) {
  FakeAutomation automation;
  constexpr std::string_view kRead =
      "    tell application \"System Events\"\n"
      "        set storedInputLevel to input volume of (get volume settings)\n"
      "    end tell";
  EXPECT_EQ(valueOf(runScript(kRead, &automation)), Value(35));
  valueOf(runScript("    set volume input volume 0\n    display notification \"Mic muted\"",
                    &automation));
  EXPECT_EQ(valueOf(runScript(kRead, &automation)), Value(0));
  valueOf(runScript("    set volume input volume 35\n    display notification \"Mic unmuted\"",
                    &automation));
  EXPECT_THAT(automation.deeds, ElementsAre("input volume 0", "notify Mic muted", "input volume 35",
                                            "notify Mic unmuted"));
}

TEST(ScriptRunTest, InputVolumeIsClampedAndTakesWhateverReadsAsANumber) {
  FakeAutomation automation;
  valueOf(
      runScript("set volume input volume 250\nset volume input volume -3\n"
                "set loud to \"41\"\nSet Volume Input Volume LOUD\nset volume input volume 7.6\n"
                "tell application \"System Events\" to set volume input volume (1E+1)",
                &automation));
  EXPECT_THAT(automation.deeds, ElementsAre("input volume 100", "input volume 0", "input volume 41",
                                            "input volume 8", "input volume 10"));
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
  FakeAutomation automation;
  valueOf(runScript(told("set value of checkbox 1 of window 1 to true\n"
                         "tell window 1\nset its input volume to 3\nset value to 9\nend tell"),
                    &automation));
  EXPECT_THAT(automation.deeds,
              ElementsAre("set value of Do Not Disturb", "set input volume of Focus"));
  EXPECT_EQ(automation.checkbox->properties.at("value"), Value(true));
}

TEST(ScriptRunTest, WhatAScriptDidBeforeItFailedStays) {
  FakeAutomation automation;
  automation.checkbox->clickError = port::ScriptError{-10000, "The daemon is gone."};
  EXPECT_EQ(failureText(runScript(focusScript("1"), &automation)), "-10000 The daemon is gone.");
  EXPECT_THAT(automation.deeds, ElementsAre("click menu bar item Focus"));
}

TEST(ScriptRunTest, SyntaxErrorOnTheLastLineKeepsTheFirstFromRunning) {
  FakeAutomation automation;
  EXPECT_NE(failureText(runScript("set volume input volume 0\nrepeat", &automation)), "");
  EXPECT_THAT(automation.deeds, IsEmpty());
}

}  // namespace
}  // namespace platform::applescript
