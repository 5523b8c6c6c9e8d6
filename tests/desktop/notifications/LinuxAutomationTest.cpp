#include "desktop/linux/automation/LinuxAutomation.h"

#include <gtest/gtest.h>

#include "platform/applescript/RunScript.h"

namespace {

using linux_desktop::LinuxAutomation;
using platform::applescript::ScriptFailure;

class Switch final : public linux_desktop::DoNotDisturbSwitch {
 public:
  bool exists() override { return there; }
  bool isOn() override { return on; }
  bool set(bool wanted) override {
    if (!refuses) on = wanted;
    return !refuses;
  }
  bool there = true;
  bool refuses = false;
  bool on = false;
};

class LinuxAutomationTest : public ::testing::Test {
 protected:
  /// The number of the error, 0 for none.
  int run(const std::string& lines) {
    const auto outcome = platform::applescript::runScript(
        "tell application \"System Events\"\n" + lines + "\nend tell", &automation);
    const auto* failure = std::get_if<ScriptFailure>(&outcome);
    return failure != nullptr ? failure->number : 0;
  }
  int tellFocus(const std::string& line) {
    return run("tell application process \"ControlCenter\"\n" + line + "\nend tell");
  }

  Switch quiet;
  LinuxAutomation automation{quiet};
};

constexpr const char* kOpen = "click menu bar item \"Focus\" of menu bar 1\n";
constexpr const char* kClick = "click checkbox \"Do Not Disturb\" of window 1";

TEST_F(LinuxAutomationTest, TheCheckboxIsThereWhileTheMenuIsOpen) {
  EXPECT_EQ(tellFocus(kClick), -1719) << "no window";
  EXPECT_EQ(tellFocus(std::string(kOpen) + kClick), 0);
  EXPECT_TRUE(quiet.on);
  EXPECT_EQ(tellFocus(kClick), 0);
  EXPECT_FALSE(quiet.on);
  EXPECT_EQ(run("key code 53"), 0);
  EXPECT_EQ(tellFocus(kClick), -1719) << "Escape has closed it";
  quiet.there = false;
  EXPECT_EQ(tellFocus(std::string(kOpen) + kClick), -1728);
}

TEST_F(LinuxAutomationTest, WhatCannotBeDoneIsAnError) {
  EXPECT_EQ(run("key code 12"), -10000);
  EXPECT_EQ(run("get volume settings"), -1708);
  EXPECT_EQ(run("set volume input volume 30"), -1708);
  EXPECT_EQ(run("display notification \"on\""), -1708);
  EXPECT_EQ(run("click application process \"ControlCenter\""), -1708);
  EXPECT_EQ(run("click application process \"Finder\""), -1728);
  EXPECT_EQ(
      tellFocus(std::string(kOpen) + "set value of checkbox \"Do Not Disturb\" of window 1 to 1"),
      -10006);
  quiet.refuses = true;
  EXPECT_EQ(tellFocus(std::string(kOpen) + kClick), -10000);
}

}  // namespace
