#include <sys/stat.h>

#include "desktop/login/AutostartFixture.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using linux_desktop::AutostartItems;

class AutostartItemsTest : public AutostartFixture {};

TEST_F(AutostartItemsTest, AFolderThatIsNotThereIsAnEmptyListAndIsMadeForTheFirstEntry) {
  EXPECT_EQ(linesSaidBy([&] {
              EXPECT_EQ(names(), Texts{});
              EXPECT_FALSE(fs::exists(folder_));
              ASSERT_TRUE(items.insert("/opt/calmdeck", {}));
            }),
            0);
  EXPECT_EQ(names(), Texts{kFirst}) << "and no draft of it is left";
  EXPECT_EQ(programs(), Texts{"/opt/calmdeck"});
}

TEST_F(AutostartItemsTest, EntriesAreListedOldestFirstAndANewOneIsLastWhateverTheClockSays) {
  writeEntry("a.desktop", "Exec=/a", 1min);
  writeEntry("b.desktop", "Exec=/b", 2h);
  writeEntry("future.desktop", "Exec=/f", -1h);
  write(file("notes.txt"), "x");
  write(file("a.desktop~"), "x");
  EXPECT_EQ(programs(), (Texts{"/b", "/a", "/f"}));
  for (const char* path : {"/1", "/2", "/3"}) ASSERT_TRUE(items.insert(path, {}));
  EXPECT_EQ(programs(), (Texts{"/b", "/a", "/f", "/1", "/2", "/3"}));
}

TEST_F(AutostartItemsTest, NothingThatHasOurNameIsRewritten) {
  writeEntry(kFirst, "Exec=/old/place/calmdeck\nX-Own=1");
  fs::create_symlink("nowhere", file(kSecond));
  const std::string before = textOf(file(kFirst));
  const auto time = fs::last_write_time(file(kFirst));
  ASSERT_TRUE(items.insert("/new/calmdeck", {}));
  EXPECT_EQ(textOf(file(kFirst)), before);
  EXPECT_EQ(fs::last_write_time(file(kFirst)), time);
  EXPECT_TRUE(fs::is_symlink(file(kSecond)));
  EXPECT_FALSE(fs::exists(file("nowhere")));
  EXPECT_EQ(names().back(), "org.calmdeck.Calmdeck-3.desktop");
  EXPECT_EQ(programs().back(), "/new/calmdeck");
}

TEST_F(AutostartItemsTest, WhatOtherProgramsStartIsResolvedByTheRulesOfDesktopEntries) {
  const fs::path shell = fs::canonical("/bin/sh");
  fs::create_directories(root / "real");
  write(root / "real" / "program", "");
  fs::create_symlink(root / "real", root / "link");
  const std::string linked = (root / "link" / "program").string();
  const struct {
    std::string lines;
    std::string program;
  } rows[] = {
      {"Exec=/a/b", "/a/b"},
      {"Exec=/a/b --option %U", "/a/b"},
      {R"(Exec="/a b/c" "d e")", "/a b/c"},
      {"Exec=/a\\sb/c", "/a"},
      {R"(Exec="/a/\\\\b")", R"(/a/\b)"},
      {R"(Exec="/a/\\$b")", "/a/$b"},
      {"Exec=/a/100%%", "/a/100%"},
      {"Exec=/a/%f", ""},
      {"Exec=/a/%", ""},
      {"Exec=/a/./x/../b", "/a/b"},
      {"Exec=sh -c true", shell},
      {"Exec=no-such-program-anywhere", ""},
      {"Exec=" + linked, (root / "real" / "program").string()},
      {"Exec=\"/unbalanced", ""},
      {"Exec=", ""},
      {"Exec=\"\"", ""},
      {"X-Exec=/a", ""},
      {"Exec=/a\nHidden=true", "/a"},
      {"Exec=/a\nX-GNOME-Autostart-enabled=false", "/a"},
      {"Exec=/a\nTryExec=/not/there\nOnlyShowIn=Other;", "/a"},
      {"Exec=/a\nType=Link", ""},
      {"Exec=/a\n[Desktop Action Other]\nExec=/b", "/a"},
      {"Exec=/a\n\n# a remark\nName[de]=\xc3\xa4", "/a"},
      {"Exec=/a\nno key", ""},
  };
  for (const auto& row : rows) {
    writeEntry("other.desktop", row.lines);
    EXPECT_EQ(items.resolve({"other.desktop"}).value_or(""), row.program) << row.lines;
  }
  write(file("other.desktop"), "");
  EXPECT_FALSE(items.resolve({"other.desktop"}));
  write(file("other.desktop"), "Exec=/a\n[Desktop Entry]\nType=Application\n");
  EXPECT_FALSE(items.resolve({"other.desktop"}));
}

TEST_F(AutostartItemsTest, WhatIsNoFileOfThatKindIsListedAndNotWaitedFor) {
  fs::create_directories(file("folder.desktop"));
  ASSERT_EQ(::mkfifo(file("pipe.desktop").c_str(), 0600), 0);
  fs::create_symlink("nowhere", file("link.desktop"));
  write(file("huge.desktop"), std::string(std::size_t{1} << 20U, '#'));
  write(file("zeros.desktop"), std::string(1000, '\0'));
  EXPECT_EQ(linesSaidBy([&] { EXPECT_EQ(programs(), Texts(5)); }), 0);
}

TEST_F(AutostartItemsTest, AnEntryForAllUsersDoesNotComeBackWhenOursIsRemoved) {
  write(everybodys_ / kFirst, "[Desktop Entry]\nType=Application\nName=x\nExec=/opt/calmdeck\n");
  for (int round = 0; round < 2; ++round) {
    const auto ours = items.insert("/opt/calmdeck", {});
    ASSERT_TRUE(ours);
    EXPECT_EQ(programs(), Texts{"/opt/calmdeck"});
    EXPECT_TRUE(items.remove(*ours));
    EXPECT_EQ(programs(), Texts{""});
    EXPECT_NE(textOf(file(kFirst)).find("\nHidden=true\n"), std::string::npos);
  }
  EXPECT_EQ(names(), Texts{kFirst}) << "what hides it is no reason for a second name";
}

TEST_F(AutostartItemsTest, AFolderThatCannotBeUsedIsOneLineEach) {
  write(folder_, "a file");
  EXPECT_EQ(linesSaidBy([&] {
              for (int i = 0; i < 3; ++i) EXPECT_FALSE(items.items());
            }),
            1);
  EXPECT_EQ(linesSaidBy([&] { EXPECT_FALSE(items.insert("/a", {})); }), 1);
  EXPECT_EQ(textOf(folder_), "a file");
  fs::remove(folder_);
  EXPECT_EQ(linesSaidBy([&] { EXPECT_EQ(names(), Texts{}); }), 0);
}

TEST_F(AutostartItemsTest, StandsInTheConfigurationFolders) {
  ::setenv("XDG_CONFIG_HOME", "/somewhere/config", 1);
  ::setenv("XDG_CONFIG_DIRS", "/etc/a:/etc/b", 1);
  EXPECT_EQ(
      AutostartItems::standardFolders(),
      (std::vector<Path>{"/somewhere/config/autostart", "/etc/a/autostart", "/etc/b/autostart"}));
  ::unsetenv("XDG_CONFIG_HOME");
  ::unsetenv("XDG_CONFIG_DIRS");
  ::setenv("HOME", "/somewhere", 1);
  EXPECT_EQ(AutostartItems::standardFolders().front(), "/somewhere/.config/autostart");
}

}  // namespace
