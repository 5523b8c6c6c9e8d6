#include <gmock/gmock.h>

#include "desktop/gnome/GnomeDesk.h"

using gnome_test::GnomeDesk;
using gnome_test::kOurExtension;
using harness::kControlAltP;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr const char* kPressed = "^Pressed at ";

/// Whether it does something, sooner or later.
bool fires(GnomeDesk& desk) {
  return desk.until([&] {
    desk.input().key("ctrl+alt+p");
    return desk.program().waitForLine(kPressed, std::chrono::milliseconds(500)).has_value();
  });
}

/// Whether the program, when it starts, says that it does not get its shortcut: it shows then where
/// another one can be chosen.
bool isRefused(GnomeDesk& desk) {
  desk.writeSettings({}, kControlAltP);
  const auto program = desk.start({CALMDECK_PROGRAM});
  return desk.until([&] { return desk.windows().find("Preferences") != std::string::npos; });
}

TEST(GnomeShortcutTest, IsTakenByTheShellAndGivenBackWithTheProgram) {
  GnomeDesk desk({.monitors = 1});
  desk.launch({}, kControlAltP);
  desk.openWindow("red", "#d02010");
  EXPECT_TRUE(fires(desk)) << desk.program().errorOutput();
  desk.lock(true);
  desk.lock(false);
  EXPECT_TRUE(fires(desk)) << desk.program().errorOutput();
  desk.program().kill();
  EXPECT_TRUE(desk.until([&] {
    return desk.evaluate("global.display.grab_accelerator('<Control><Alt>p', 0)") != "0";
  }));
}

TEST(GnomeShortcutTest, ThatSomebodyElseHasIsRefused) {
  GnomeDesk desk({.monitors = 1});
  ASSERT_NE(desk.evaluate("global.display.grab_accelerator('<Control><Alt>p', 0)"), "0");
  EXPECT_TRUE(isRefused(desk));
}

/// The daemon that acts on the keys which users bind to commands.
class GnomeCommandKeyTest : public testing::Test {
 protected:
  explicit GnomeCommandKeyTest(bool extension = false)
      : desk{{.monitors = 1, .extension = extension}} {
    daemon = desk.start({"/usr/libexec/gsd-media-keys"});
    EXPECT_TRUE(
        desk.until([&] { return desk.bus().hasOwner("org.gnome.SettingsDaemon.MediaKeys"); }));
  }
  [[nodiscard]] std::string bound() {
    return desk
        .run({"gsettings", "get", "org.gnome.settings-daemon.plugins.media-keys",
              "custom-keybindings"})
        .output;
  }

  GnomeDesk desk;
  std::unique_ptr<harness::Process> daemon;
};

TEST_F(GnomeCommandKeyTest, TellsTheProgramAndLeavesNothingBehind) {
  desk.launch({}, kControlAltP);
  EXPECT_TRUE(fires(desk));
  desk.program().kill();
  EXPECT_THAT(bound(), HasSubstr("calmdeck"));
  desk.launch({});
  EXPECT_TRUE(desk.until([&] { return bound().find("calmdeck") == std::string::npos; }));
}

TEST_F(GnomeCommandKeyTest, ThatTheDesktopHasIsRefused) {
  desk.mustRun(
      {"gsettings", "set", "org.gnome.desktop.wm.keybindings", "lower", "['<Primary><Mod1>P']"});
  EXPECT_TRUE(isRefused(desk));
  EXPECT_THAT(bound(), Not(HasSubstr("calmdeck")));
}

class GnomeTurnedOffTest : public GnomeCommandKeyTest {
 protected:
  GnomeTurnedOffTest() : GnomeCommandKeyTest(true) {}
};

TEST_F(GnomeTurnedOffTest, LeavesItsKeysToThoseThatUsersBindToCommands) {
  desk.launch({}, kControlAltP);
  ASSERT_TRUE(fires(desk));
  EXPECT_THAT(bound(), Not(HasSubstr("calmdeck")));
  desk.turnExtension(kOurExtension, false);
  EXPECT_TRUE(fires(desk)) << desk.program().errorOutput();
  EXPECT_THAT(bound(), HasSubstr("calmdeck"));
  EXPECT_THAT(desk.program().errorOutput(), HasSubstr("its user has turned it off"));
  // On again it does not fight for them.
  desk.turnExtension(kOurExtension, true);
  ASSERT_TRUE(desk.until([&] { return desk.hasButton(); }));
  EXPECT_TRUE(fires(desk)) << desk.program().errorOutput();
}

TEST_F(GnomeTurnedOffTest, LeavesThemThereFromTheStartOn) {
  desk.turnExtension(kOurExtension, true);
  desk.turnExtension(kOurExtension, false);
  ASSERT_TRUE(desk.until([&] { return desk.isTurnedOff(kOurExtension); }));
  desk.launch({}, kControlAltP);
  EXPECT_TRUE(fires(desk)) << desk.program().errorOutput();
  EXPECT_THAT(bound(), HasSubstr("calmdeck"));
  desk.turnExtension(kOurExtension, true);
  ASSERT_TRUE(desk.until([&] { return desk.hasButton(); }));
  EXPECT_TRUE(fires(desk)) << desk.program().errorOutput();
}

}  // namespace
