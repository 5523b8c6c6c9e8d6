#include <QCoreApplication>
#include <cstdlib>

#include "desktop/harness/Process.h"
#include "desktop/harness/Until.h"
#include "desktop/linux/login/ProgramPath.h"
#include "desktop/login/AutostartFixture.h"

namespace {

namespace fs = std::filesystem;
using linux_desktop::ownProgramPath;

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
