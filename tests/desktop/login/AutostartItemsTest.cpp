#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "desktop/harness/PrivateHome.h"
#include "desktop/linux/login/AutostartItems.h"

namespace {

/// Autostart folders of their own, none of them there yet, and what the program says about them.
class AutostartFixture : public ::testing::Test {
 protected:
  using Path = std::filesystem::path;
  using Texts = std::vector<std::string>;

  [[nodiscard]] std::vector<Path> folders() const { return {folder_, everybodys_}; }
  [[nodiscard]] Path file(const std::string& name) const { return folder_ / name; }

  static void write(const Path& file, const std::string& text) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
  }
  /// An entry with these lines, `age` old.
  void writeEntry(const std::string& name, const std::string& lines,
                  std::chrono::seconds age = std::chrono::hours(1)) const {
    write(file(name), "[Desktop Entry]\nType=Application\nName=x\n" + lines + "\n");
    std::filesystem::last_write_time(file(name), Clock::now() - age);
  }
  [[nodiscard]] std::vector<platform::port::LoginItem> listed() {
    const auto list = items.items();
    EXPECT_TRUE(list);
    return list.value_or(std::vector<platform::port::LoginItem>{});
  }
  [[nodiscard]] Texts names() {
    Texts names;
    for (const auto& item : listed()) names.push_back(item.identifier);
    return names;
  }
  [[nodiscard]] Texts programs() {
    Texts programs;
    for (const auto& item : listed()) programs.push_back(items.resolve(item).value_or(""));
    return programs;
  }

  /// How many lines of standard error `action` caused.
  template <typename Action>
  static std::ptrdiff_t linesSaidBy(Action action) {
    ::testing::internal::CaptureStderr();
    action();
    const std::string said = ::testing::internal::GetCapturedStderr();
    return std::count(said.begin(), said.end(), '\n');
  }

  using Clock = std::filesystem::file_time_type::clock;
  static constexpr const char* kFirst = "org.calmdeck.Calmdeck.desktop";
  static constexpr const char* kSecond = "org.calmdeck.Calmdeck-2.desktop";

  QTemporaryDir temporary_;
  const Path root = temporary_.path().toStdString();
  const Path folder_ = root / "config" / "autostart";
  const Path everybodys_ = root / "xdg" / "autostart";
  linux_desktop::AutostartItems items{folders()};
};

namespace fs = std::filesystem;
using linux_desktop::ownProgramPath;
using namespace std::chrono_literals;

class AutostartItemsTest : public AutostartFixture {};

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
  const std::string before = harness::textOf(file(kFirst));
  const auto time = fs::last_write_time(file(kFirst));
  ASSERT_TRUE(items.insert("/new/calmdeck", {}));
  EXPECT_EQ(harness::textOf(file(kFirst)), before);
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
    EXPECT_NE(harness::textOf(file(kFirst)).find("\nHidden=true\n"), std::string::npos);
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
  EXPECT_EQ(harness::textOf(folder_), "a file");
  fs::remove(folder_);
  EXPECT_EQ(linesSaidBy([&] { EXPECT_EQ(names(), Texts{}); }), 0);
}

class LauncherTest : public AutostartFixture {
 protected:
  /// A program that leaves a file beside itself when it is run.
  [[nodiscard]] fs::path makeProgram(const fs::path& name) const {
    fs::path program = root / name;
    write(program, "#!/bin/sh\n: > \"$0.ran\"\n");
    fs::permissions(program, fs::perms::owner_all);
    return program;
  }
  [[nodiscard]] static bool hasRun(const fs::path& program) {
    return harness::until([&] { return fs::remove(program.string() + ".ran"); });
  }
};

TEST_F(LauncherTest, EveryLauncherStartsTheProgramOfAnEntry) {
  const std::vector<std::vector<std::string>> launchers = {{"gio", "launch"}, {"dex"}};
  for (const char* name : {"plain", "with some blanks/my program", "caf\xc3\xa9 \xe2\x98\x95",
                           "it's", "a;b~#&*()[]{}<>|=!?^", "-dash", "a@b+c,d:e", "a: b#c"}) {
    const fs::path program = makeProgram(name);
    const auto item = items.insert(program.string(), {});
    ASSERT_TRUE(item) << name;
    EXPECT_EQ(items.resolve(*item), program.string());
    const std::string entry = file(item->identifier).string();
    for (std::vector<std::string> command : launchers) {
      command.push_back(entry);
      // Kept until the program has run, since what a launcher started may go with it.
      harness::Process launcher({command});
      EXPECT_TRUE(hasRun(program)) << command.front() << ": " << program << launcher.errorOutput();
    }
    EXPECT_TRUE(harness::runToEnd({{"desktop-file-validate", entry}}).succeeded()) << name;
    EXPECT_TRUE(items.remove(*item));
  }
}

TEST_F(LauncherTest, APathThatLaunchersDisagreeOnIsRefusedWithOneLine) {
  for (const std::string path :
       {"/100%", "/a\"b", "/a$b", "/a`b", "/a\\b", "/a\nb", "/a\tb", "/caf\xe9", "relative", ""}) {
    EXPECT_EQ(linesSaidBy([&] { EXPECT_FALSE(items.insert(path, {})); }), 1) << path;
  }
  EXPECT_FALSE(fs::exists(folder_));
}

TEST_F(LauncherTest, TheProgramIsTheAppImageOnlyWhereItRunsFromOne) {
  int argc = 0;
  const QCoreApplication application(argc, nullptr);
  const fs::path self = fs::canonical("/proc/self/exe");
  const fs::path image = makeProgram("Calmdeck-1.0.AppImage");
  fs::create_symlink(image, root / "Current.AppImage");
  EXPECT_EQ(ownProgramPath(), self);

  ::setenv("APPIMAGE", (root / "Current.AppImage").c_str(), 1);
  EXPECT_EQ(ownProgramPath(), self) << "left over from another one";
  ::setenv("APPDIR", root.c_str(), 1);
  EXPECT_EQ(ownProgramPath(), self) << "an AppImage that started this program";
  ::setenv("APPDIR", self.parent_path().parent_path().c_str(), 1);
  EXPECT_EQ(ownProgramPath(), fs::canonical(image));
  ::setenv("APPIMAGE", "no-path", 1);
  EXPECT_EQ(ownProgramPath(), self);
  ::unsetenv("APPIMAGE");
  ::unsetenv("APPDIR");
}

}  // namespace
