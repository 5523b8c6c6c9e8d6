#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "desktop/applications/ApplicationsDesk.h"

using harness::WindowManager;
using testing::Contains;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

class ApplicationListTest : public testing::Test {
 protected:
  ApplicationsDesk desk{WindowManager::Openbox};
};

/// The number at the start of the line of this application.
std::string idOf(const std::vector<std::string>& list, const std::string& name) {
  for (const std::string& line : list) {
    if (line.ends_with(" " + name)) return line.substr(0, line.find(' '));
  }
  return "none";
}

TEST_F(ApplicationListTest, WindowsAreGroupedByApplicationAndKeepTheirNumber) {
  desk.open({.name = "one", .className = "Editor"});
  desk.open({.name = "two", .className = "editor"});
  desk.open({.name = "three", .className = "Editor", .gtkApplicationId = "org.example.Other"});
  desk.open({.name = "widget", .className = "Widget", .state = "SKIP_TASKBAR"});
  desk.open({.name = "panel", .className = "Bar", .type = "DOCK"});
  desk.open({.name = "second", .className = "Calmdeck"});
  desk.startProbe();
  const auto list = desk.list();
  EXPECT_THAT(list, SizeIs(5));
  EXPECT_THAT(list, Contains(HasSubstr(" accessory shown Probe")));
  EXPECT_THAT(list, Contains(HasSubstr(" regular shown Editor")));
  EXPECT_THAT(list, Contains(HasSubstr(" accessory shown Widget")));
  EXPECT_THAT(list, Contains(HasSubstr(" accessory shown Bar")));

  const auto palette = desk.open({.name = "palette", .className = "Palette"});
  const auto id = idOf(desk.list(), "Palette");
  EXPECT_EQ(idOf(desk.list(), "Palette"), id);
  xcb_destroy_window(desk.desk().x().get(), palette);
  xcb_flush(desk.desk().x().get());
  ASSERT_TRUE(desk.desk().until([&] { return desk.stacking({palette}).empty(); }));
  EXPECT_EQ(idOf(desk.list(), "Palette"), "none");
  desk.open({.name = "palette", .className = "Palette"});
  EXPECT_NE(idOf(desk.list(), "Palette"), id);
  EXPECT_EQ(idOf(desk.list(), "Editor"), idOf(list, "Editor"));
}

TEST_F(ApplicationListTest, NamesComeFromTheDesktopEntries) {
  const auto folder = desk.desk().home().home() / ".local/share/applications";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "org.example.Paint.desktop")
      << "[Desktop Entry]\nName=Paint Box\nName[xx]=Other\nStartupWMClass=pnt\n"
         "[Desktop Action New]\nName=New Picture\n";
  std::ofstream(folder / "sheets.desktop") << "[Desktop Entry]\nName=Spread Sheets\n";
  desk.open({.name = "1", .className = "pnt"});
  desk.open({.name = "2", .className = "Sheets"});
  desk.startProbe();
  const auto list = desk.list();
  EXPECT_THAT(list, Contains(HasSubstr(" Paint Box")));
  EXPECT_THAT(list, Contains(HasSubstr(" Spread Sheets")));

  std::ofstream(folder / "late.desktop") << "[Desktop Entry]\nName=Come Late\n";
  desk.open({.name = "3", .className = "Late"});
  EXPECT_THAT(desk.list(), Contains(HasSubstr(" Come Late")));
}

TEST_F(ApplicationListTest, WindowsThatVanishMeanwhileAreNoHarm) {
  const auto gone = desk.open({.name = "gone", .className = "Gone"});
  const auto stays = desk.open({.name = "stays", .className = "Stays"});
  desk.startProbe();
  desk.tell("hide");
  ASSERT_TRUE(desk.allMinimised({gone, stays}));
  desk.probe().freeze();
  xcb_destroy_window(desk.desk().x().get(), gone);
  xcb_flush(desk.desk().x().get());
  desk.probe().thaw();
  desk.tell("show");
  EXPECT_TRUE(desk.allShown({stays}));
  EXPECT_EQ(desk.probe().errorOutput(), "");
}

TEST(WithoutWindowManagerTest, OneLineSaysThatNothingCanBeHidden) {
  ApplicationsDesk desk(WindowManager::None);
  desk.openProgram("letter", {100, 100, 300, 200});
  desk.startProbe();
  desk.tell("hide");
  desk.tell("hide show");
  EXPECT_THAT(desk.list(), SizeIs(1));
  const std::string errors = desk.probe().errorOutput();
  EXPECT_THAT(errors, HasSubstr("no window manager"));
  EXPECT_EQ(std::ranges::count(errors, '\n'), 1);
}

}  // namespace
