#include "app/LaunchOnStartup.h"
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

TEST_F(LaunchAtLoginTest, OneEntryIsAddedLastAndTheLastOneIsRemoved) {
  const struct {
    const char* name;
    const char* program;
    Lines before;  ///< "" where it cannot be told what the entry starts
    Lines added;
    Lines removed;
    std::size_t gone;  ///< the place of the one that is removed
  } rows[] = {
      {"others", kOurs, {kA, kB}, {kA, kB, kOurs}, {kA, kB}, 2},
      {"two", kOurs, {kOurs, kA, kOurs, kB}, {kOurs, kA, kOurs, kB}, {kOurs, kA, kB}, 2},
      {"unknown ones", kOurs, {"", kOurs, ""}, {"", kOurs, ""}, {"", ""}, 1},
      {"only unknown ones", kOurs, {"", ""}, {"", "", kOurs}, {"", ""}, 2},
      {"a moved program", kB, {kOurs}, {kOurs, kB}, {kOurs}, 1},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    desk.desktop.bundlePath = row.program;
    desk.startedAtLogin.list.clear();
    desk.output.lines.clear();
    for (const std::string& path : row.before) {
      items.add(path.empty() ? std::nullopt : std::optional(path));
    }
    for (int round = 0; round < 2; ++round) {
      LaunchOnStartup::setLaunchAtStartup(true);
      EXPECT_EQ(items.paths(), row.added);
    }
    const std::string gone = items.list.at(row.gone).identifier;
    LaunchOnStartup::setLaunchAtStartup(false);
    EXPECT_EQ(items.paths(), row.removed);
    EXPECT_EQ(desk.output.lines, Lines{"Optional(<LSSharedFileListItem " + gone + ">)"});
  }
  // What the program was called before it was moved is another's.
  LaunchOnStartup::setLaunchAtStartup(false);
  EXPECT_EQ(items.paths(), Lines{kOurs});
  EXPECT_EQ(desk.output.lines.size(), 1U);
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
  desk.desktop.loginItems = nullptr;
  chooseBoth();
  EXPECT_FALSE(addLoginitem().itemRefInLoginItems());
  EXPECT_EQ(desk.log.calls(), Lines{});
  EXPECT_EQ(desk.output.lines, Lines{});

  desk.desktop.loginItems = &desk.startedAtLogin;
  items.canBeChanged = false;
  chooseBoth();
  EXPECT_EQ(items.paths(), Lines{kOurs});
  EXPECT_EQ(desk.output.lines, Lines{"Optional(<LSSharedFileListItem item-1>)"})
      << "whether removing worked is nobody's question";
  items.canBeChanged = true;
  std::make_shared<addLoginitem>()->performSelector("itemRefInLoginItems");
  EXPECT_EQ(items.paths(), Lines{});
}

}  // namespace
}  // namespace app
