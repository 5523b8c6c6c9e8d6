#include <gmock/gmock.h>

#include "desktop/gnome/GnomeDesk.h"

using gnome_test::GnomeDesk;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr const char* kControlAltP =
    R"("kuserdefault_ToggleAppShortcut": "p", "kuserdefault_ToggleAppFlag": [12, 13])";
constexpr const char* kPressed = "^Pressed at ";

/// Whether the program, when it starts, says that it does not get its shortcut: it shows then where
/// another one can be chosen.
bool isRefused(GnomeDesk& desk) {
  desk.home().writeConfig("calmdeck/settings.json", std::string("{") + kControlAltP + "}");
  const auto program = desk.start({CALMDECK_PROGRAM});
  return desk.until([&] { return desk.windows().find("Preferences") != std::string::npos; });
}

TEST(GnomeShortcutTest, IsTakenByTheShellAndGivenBackWithTheProgram) {
  GnomeDesk desk({.monitors = 1});
  desk.launch({}, kControlAltP);
  desk.openWindow("red", "#d02010");
  for (int round = 0; round < 2; ++round) {
    desk.input().key("ctrl+alt+p");
    EXPECT_TRUE(desk.program().waitForLine(kPressed)) << desk.program().errorOutput();
  }
  desk.turnExtension("shell@calmdeck.org", false);
  desk.turnExtension("shell@calmdeck.org", true);
  EXPECT_TRUE(desk.until([&] {
    desk.input().key("ctrl+alt+p");
    return desk.program().waitForLine(kPressed, std::chrono::milliseconds(500)).has_value();
  }));
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
  GnomeCommandKeyTest() {
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

  GnomeDesk desk{{.monitors = 1, .extension = false}};
  std::unique_ptr<harness::Process> daemon;
};

TEST_F(GnomeCommandKeyTest, TellsTheProgramAndLeavesNothingBehind) {
  desk.launch({}, kControlAltP);
  EXPECT_TRUE(desk.until([&] {
    desk.input().key("ctrl+alt+p");
    return desk.program().waitForLine(kPressed, std::chrono::milliseconds(500)).has_value();
  }));
  desk.program().kill();
  EXPECT_THAT(bound(), HasSubstr("calmdeck"));
  desk.launch({});
  EXPECT_TRUE(desk.until([&] { return bound().find("calmdeck") == std::string::npos; }));
}

TEST_F(GnomeCommandKeyTest, ThatTheDesktopHasIsRefused) {
  const auto set = desk.run(
      {"gsettings", "set", "org.gnome.desktop.wm.keybindings", "lower", "['<Primary><Mod1>P']"});
  ASSERT_TRUE(set.succeeded()) << set.errorOutput;
  EXPECT_TRUE(isRefused(desk));
  EXPECT_THAT(bound(), Not(HasSubstr("calmdeck")));
}

}  // namespace
