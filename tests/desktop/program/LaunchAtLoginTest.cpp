#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "desktop/program/ProgramDesk.h"

using harness::DeskOptions;
using harness::ProcessEnd;
using harness::textOf;
using harness::WindowManager;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

namespace fs = std::filesystem;

class LaunchAtLoginTest : public testing::Test {
 protected:
  void end() {
    program.program().signal(SIGTERM);
    EXPECT_EQ(program.program().waitForExit(), (ProcessEnd{0, 0}));
  }

  ProgramDesk program{DeskOptions{.windowManager = WindowManager::Openbox}};
  const harness::PrivateHome& home = program.desk().home();
  const fs::path folder = home.config() / "autostart";
  const fs::path entry = folder / "org.calmdeck.Calmdeck.desktop";
};

TEST_F(LaunchAtLoginTest, AFirstLaunchMakesAnEntryThatStartsTheProgram) {
  ASSERT_TRUE(program.start());
  EXPECT_THAT(textOf(entry), HasSubstr("\nExec=" + fs::canonical(CALMDECK_PROGRAM).string()));
  EXPECT_THAT(program.complaints("login"), IsEmpty());
  end();

  const auto launcher = program.desk().start({"gio", "launch", entry.string()});
  EXPECT_TRUE(program.opens());
}

TEST_F(LaunchAtLoginTest, AChoiceAgainstItIsAppliedAtEachLaunchAndPrintedOnce) {
  ASSERT_TRUE(program.start());
  end();
  home.writeConfig("calmdeck/settings.json", R"({"kUserdeaultsLaunchAtLogin": false})");
  ASSERT_TRUE(program.start());
  EXPECT_FALSE(fs::exists(entry));
  EXPECT_TRUE(
      program.says(R"(Optional\(<LSSharedFileListItem org\.calmdeck\.Calmdeck\.desktop>\))"));
  end();
  ASSERT_TRUE(program.start());
  EXPECT_FALSE(fs::exists(entry));
  EXPECT_THAT(program.program().output(), testing::Not(HasSubstr("LSSharedFileList")));
}

TEST_F(LaunchAtLoginTest, WhatAnotherDialogSwitchedOffStaysSo) {
  ASSERT_TRUE(program.start());
  end();
  const std::string made = textOf(entry);
  for (const std::string line : {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n"}) {
    const std::string switchedOff = made + line;
    std::ofstream(entry) << switchedOff;
    ASSERT_TRUE(program.start());
    end();
    EXPECT_EQ(textOf(entry), switchedOff);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
  }
}

TEST_F(LaunchAtLoginTest, ABrokenFolderIsOneLineAndTheRestGoesOn) {
  home.writeConfig("autostart", "not a folder");
  ASSERT_TRUE(program.start());
  EXPECT_THAT(program.complaints("login"), SizeIs(1));
  EXPECT_EQ(textOf(folder), "not a folder");
}

}  // namespace
