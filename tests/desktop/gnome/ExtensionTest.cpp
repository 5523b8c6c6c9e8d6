// Our extension of the shell, and what is done without it.

#include <gtest/gtest.h>

#include "desktop/gnome/GnomeDesk.h"
#include "desktop/harness/AccessibilityClient.h"

using gnome_test::GnomeDesk;
using gnome_test::kIconsExtension;
using gnome_test::kOurExtension;
using gnome_test::kOurShell;
using harness::AccessibilityClient;

namespace {

constexpr const char* kPath = "/org/calmdeck/Shell";

/// Icons, and a shell without our extension.
class GnomeIconsTest : public testing::Test {
 protected:
  [[nodiscard]] bool isBare() {
    return desk.until([&] { return desk.isBare(); });
  }
  // Something else may be seen for a moment.
  [[nodiscard]] bool showsIcons() {
    const auto areOn = [&] { return switchedOff().find(kIconsExtension) == std::string::npos; };
    return desk.until(areOn) && desk.until([&] { return !desk.isBare(); }, 3 * harness::kPatience);
  }
  [[nodiscard]] std::string switchedOff() {
    return desk.run({"gsettings", "get", "org.gnome.shell", "disabled-extensions"}).output;
  }

  GnomeDesk desk{{.monitors = 1, .icons = true, .extension = false}};
};

TEST_F(GnomeIconsTest, GoWithTheModeAndComeBackAlsoAfterAKill) {
  desk.launch({"DesktopIcons"});
  desk.toggleMode();
  ASSERT_TRUE(isBare()) << desk.program().errorOutput();
  desk.toggleMode();
  EXPECT_TRUE(showsIcons());

  desk.toggleMode();
  ASSERT_TRUE(isBare());
  desk.program().kill();
  desk.launch({"DesktopIcons"});
  EXPECT_TRUE(showsIcons());

  desk.toggleMode();
  ASSERT_TRUE(isBare());
  desk.program().signal(SIGTERM);
  EXPECT_TRUE(showsIcons());
}

TEST_F(GnomeIconsTest, StayOffWhereTheUserTurnedThemOff) {
  desk.turnExtension(kIconsExtension, false);
  ASSERT_TRUE(isBare());
  desk.launch({"DesktopIcons"});
  desk.toggleMode();
  desk.toggleMode();
  EXPECT_EQ(desk.program().terminate(harness::kPatience), harness::ProcessEnd{0});
  EXPECT_NE(switchedOff().find(kIconsExtension), std::string::npos);
  EXPECT_TRUE(desk.isBare());
}

TEST(GnomeExtensionTest, ServesTheProgramAndNobodyElse) {
  GnomeDesk desk({.monitors = 1});
  desk.openWindow("red", "#d02010");
  desk.launch({"HideActiveApps"});
  ASSERT_TRUE(desk.bus().hasOwner(kOurShell));
  EXPECT_FALSE(desk.bus().call(kOurShell, kPath, "org.calmdeck.Shell.Windows.Hide", {}));
  EXPECT_EQ(desk.windows(), "red*");
  desk.toggleMode();
  EXPECT_TRUE(desk.until([&] { return desk.windows().empty(); }));
}

TEST(GnomeExtensionTest, ThePanelSaysWhatIsNotDoneWhileItIsTurnedOff) {
  GnomeDesk desk({.monitors = 1});
  desk.writeSettings({});
  const auto program = desk.start({CALMDECK_PROGRAM}, AccessibilityClient::accessibleEnvironment());
  const AccessibilityClient reader(desk);
  const auto reads = [&](const std::string& icons, const std::string& others) {
    return desk.until([&] { return reader.shows(icons) && reader.shows(others); });
  };
  ASSERT_TRUE(desk.until([&] { return desk.bus().hasOwner(kOurShell); }));
  for (const bool on : {false, true}) {
    desk.turnExtension(kOurExtension, on);
    EXPECT_TRUE(reads("Covers the icons with the wallpaper",
                      on ? "Takes their windows off the screen"
                         : "Not on this desktop: no program can hide the windows of others"))
        << program->errorOutput();
  }
}

TEST(GnomeExtensionTest, IsTurnedOnOnceItsUserAllowsExtensions) {
  GnomeDesk desk({.monitors = 1});
  const auto allow = [&](const char* none) {
    desk.mustRun({"gsettings", "set", "org.gnome.shell", "disable-user-extensions", none});
  };
  allow("true");
  desk.writeSettings({});
  const auto program = desk.start({CALMDECK_PROGRAM});
  EXPECT_TRUE(program->complains("its user has turned it off"));
  allow("false");
  EXPECT_TRUE(desk.until([&] { return desk.bus().hasOwner(kOurShell); }));
}

TEST(GnomeExtensionTest, IsUsedFromTheNextLoginOnWhereTheShellDoesNotKnowIt) {
  GnomeDesk desk({.monitors = 1, .extension = false});
  desk.installExtension();
  desk.launch({"HideActiveApps"});
  EXPECT_TRUE(desk.program().complains("until the next login"));
}

}  // namespace
