#include "app/LaunchOnStartup.h"
#include "app/addLoginitem.h"
#include "settings/SettingsKeys.h"
#include "support/ApplicationTest.h"

namespace app {
namespace {

using Lines = std::vector<std::string>;

constexpr const char* kA = "/programs/a";
constexpr const char* kB = "/programs/b";
constexpr const char* kOurs = "/programs/calmdeck";

class LaunchAtLoginTest : public tests::ApplicationTest {
 protected:
  simulated::SimulatedLoginItems& items = desk.startedAtLogin;
};

TEST_F(LaunchAtLoginTest, TheEntryBecomesTheLastAndOnlyOneIsMade) {
  for (const Lines& others : {Lines{}, Lines{kA, kB}}) {
    items.list.clear();
    for (const std::string& path : others) items.add(path);
    Lines expected = others;
    expected.emplace_back(kOurs);
    for (int round = 0; round < 2; ++round) {
      LaunchOnStartup::setLaunchAtStartup(true);
      EXPECT_EQ(items.paths(), expected);
    }
  }
  EXPECT_EQ(desk.output.lines, Lines{});
}

TEST_F(LaunchAtLoginTest, RemovingPrintsTheEntryAndRemovingInVainNothing) {
  for (const char* path : {kA, kOurs, kB}) items.add(path);
  LaunchOnStartup::setLaunchAtStartup(false);
  EXPECT_EQ(items.paths(), (Lines{kA, kB}));
  EXPECT_EQ(desk.output.lines, Lines{"Optional(<LSSharedFileListItem item-2>)"});
  LaunchOnStartup::setLaunchAtStartup(false);
  EXPECT_EQ(desk.output.lines.size(), 1U);
  EXPECT_EQ(desk.log.calls("loginItems"), Lines{"loginItems.remove item-2"});
}

TEST_F(LaunchAtLoginTest, OfTwoEntriesTheLaterIsRemoved) {
  for (const char* path : {kOurs, kA, kOurs, kB}) items.add(path);
  LaunchOnStartup::setLaunchAtStartup(true);
  EXPECT_EQ(items.list.size(), 4U);
  LaunchOnStartup::setLaunchAtStartup(false);
  EXPECT_EQ(items.paths(), (Lines{kOurs, kA, kB}));
  EXPECT_EQ(desk.output.lines, Lines{"Optional(<LSSharedFileListItem item-3>)"});
}

TEST_F(LaunchAtLoginTest, TheEntryOfAMovedProgramStaysAsItIs) {
  items.add(kOurs);
  desk.programPath = "/elsewhere/calmdeck";
  LaunchOnStartup::setLaunchAtStartup(false);
  EXPECT_EQ(items.paths(), Lines{kOurs});
  LaunchOnStartup::setLaunchAtStartup(true);
  EXPECT_EQ(items.paths(), (Lines{kOurs, "/elsewhere/calmdeck"}));
  LaunchOnStartup::setLaunchAtStartup(false);
  EXPECT_EQ(items.paths(), Lines{kOurs});
}

TEST_F(LaunchAtLoginTest, EntriesThatCannotBeResolvedAreSkipped) {
  items.add(std::nullopt);
  items.add(kOurs);
  items.add(std::nullopt);
  LaunchOnStartup::setLaunchAtStartup(true);
  EXPECT_EQ(items.list.size(), 3U);
  LaunchOnStartup::setLaunchAtStartup(false);
  EXPECT_EQ(items.paths(), (Lines{"", ""}));
  LaunchOnStartup::setLaunchAtStartup(true);
  EXPECT_EQ(items.paths(), (Lines{"", "", kOurs}));
}

TEST_F(LaunchAtLoginTest, AListThatCannotBeHadOrChangedIsNobodysTrouble) {
  items.add(kOurs);
  const auto chooseBoth = [] {
    for (const bool launches : {true, false}) LaunchOnStartup::setLaunchAtStartup(launches);
  };
  items.canBeRead = false;
  chooseBoth();
  EXPECT_FALSE(addLoginitem().itemRefInLoginItems());
  items.canBeRead = true;
  desk.hasLoginItems = false;
  chooseBoth();
  EXPECT_FALSE(addLoginitem().itemRefInLoginItems());
  EXPECT_EQ(desk.log.calls(), Lines{});
  EXPECT_EQ(desk.output.lines, Lines{});

  desk.hasLoginItems = true;
  items.canBeChanged = false;
  chooseBoth();
  EXPECT_EQ(items.paths(), Lines{kOurs});
  EXPECT_EQ(desk.output.lines, Lines{"Optional(<LSSharedFileListItem item-1>)"})
      << "whether removing worked is nobody's question";
  items.list.clear();
  chooseBoth();
  EXPECT_EQ(items.paths(), Lines{});
}

TEST_F(LaunchAtLoginTest, TheRemovalIsReachedByName) {
  items.add(kOurs);
  std::make_shared<addLoginitem>()->performSelector("itemRefInLoginItems");
  EXPECT_EQ(items.paths(), Lines{});
}

TEST_F(LaunchAtLoginTest, EveryLaunchAppliesTheStoredChoice) {
  launch();
  EXPECT_EQ(items.paths(), Lines{kOurs});
  items.list.clear();
  relaunch();
  EXPECT_EQ(items.paths(), Lines{kOurs});
  desk.settings.values.insert_or_assign(std::string(settings::kUserdeaultsLaunchAtLogin), false);
  relaunch();
  EXPECT_EQ(items.paths(), Lines{});
  EXPECT_EQ(desk.output.lines.size(), 1U);
  relaunch();
  EXPECT_EQ(items.paths(), Lines{});
  EXPECT_EQ(desk.output.lines, Lines{});
}

}  // namespace
}  // namespace app
