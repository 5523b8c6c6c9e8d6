#include "desktop/linux/automation/LinuxAutomation.h"

#include <gtest/gtest.h>

#include "platform/applescript/Script.h"

namespace {

using linux_desktop::LinuxAutomation;
using linux_desktop::VolumeTrouble;
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

class Volume final : public linux_desktop::VolumeControl {
 public:
  std::variant<int, VolumeTrouble> inputLevel() override {
    if (trouble) return *trouble;
    return level;
  }
  std::optional<VolumeTrouble> setInputLevel(int wanted) override {
    if (!trouble) level = wanted;
    return trouble;
  }
  int level = 35;
  std::optional<VolumeTrouble> trouble;
};

class Texts final : public linux_desktop::Notifier {
 public:
  std::optional<std::string> show(std::string_view text) override {
    shown.emplace_back(text);
    return obstacle;
  }
  std::vector<std::string> shown;
  std::optional<std::string> obstacle;
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
  Volume volume;
  Texts texts;
  LinuxAutomation automation{quiet, volume, texts};
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
  EXPECT_EQ(run("click application process \"ControlCenter\""), -1708);
  EXPECT_EQ(run("click application process \"Finder\""), -1728);
  quiet.refuses = true;
  EXPECT_EQ(tellFocus(std::string(kOpen) + kClick), -10000);
}

TEST_F(LinuxAutomationTest, TroubleWithTheSoundIsTheScriptsError) {
  for (const VolumeTrouble trouble :
       {VolumeTrouble::NoServer, VolumeTrouble::NoMicrophone, VolumeTrouble::Refused}) {
    volume.trouble = trouble;
    EXPECT_EQ(run("set settings to get volume settings"), -10000);
    EXPECT_EQ(run("set volume input volume 0\ndisplay notification \"Mic muted\""), -10000);
  }
  EXPECT_EQ(texts.shown, std::vector<std::string>{}) << "it is not muted";
  volume.trouble.reset();
  EXPECT_EQ(run("set volume input volume 0\ndisplay notification \"Mic muted\""), 0);
  EXPECT_EQ(texts.shown, std::vector<std::string>{"Mic muted"});
  texts.obstacle = "Nothing shows notifications here.";
  EXPECT_EQ(run("display notification \"Mic muted\""), -10000);
}

}  // namespace
