#include <gmock/gmock.h>

#include "desktop/gnome/GnomeDesk.h"

using gnome_test::GnomeDesk;
using gnome_test::kIconsExtension;
using gnome_test::kOurExtension;
using gnome_test::kOurShell;
using testing::HasSubstr;

namespace {

/// Icons, three windows of which one is minimised, and the program, whose mode covers and hides.
class GnomeModeTest : public testing::Test {
 protected:
  GnomeModeTest() {
    desk.openWindow("red", "#d02010");
    desk.openWindow("green", "#10c020");
    (void)desk.evaluate("global.display.focus_window.minimize(); 0");
    desk.openWindow("blue", "#1020e0");
    desk.launch({"DesktopIcons", "HideActiveApps"});
    EXPECT_TRUE(desk.until([&] { return desk.windows() == kAll; })) << desk.windows();
    before = desk.seen();
  }

  void turnOn() {
    desk.toggleMode();
    ASSERT_TRUE(isBare());
    EXPECT_EQ(desk.windows(), "");
  }
  [[nodiscard]] testing::AssertionResult isBare() {
    if (desk.until([&] { return desk.isBare(); })) return testing::AssertionSuccess();
    return testing::AssertionFailure() << desk.windows() << '\n' << desk.program().errorOutput();
  }
  /// Once nobody has anything left to draw.
  [[nodiscard]] testing::AssertionResult staysBare() {
    EXPECT_TRUE(desk.until([&] { return desk.home().isAtRest(); }));
    return isBare();
  }
  [[nodiscard]] bool showsSomething(int monitor) {
    const harness::Image all = desk.seen();
    const int left = monitor * GnomeDesk::kMonitorWidth;
    return harness::showsIcons(all.part({left, 0, GnomeDesk::kMonitorWidth, all.height}));
  }
  /// Where no icon is.
  void askForMenu(int monitor) {
    desk.input().click(monitor * GnomeDesk::kMonitorWidth + GnomeDesk::kMonitorWidth / 2,
                       GnomeDesk::kMonitorHeight / 2, harness::Button::Right);
  }
  [[nodiscard]] testing::AssertionResult isAsBefore() {
    if (desk.until([&] { return desk.windows() == kAll && desk.seen() == before; }))
      return testing::AssertionSuccess();
    return testing::AssertionFailure() << desk.windows() << '\n' << desk.program().errorOutput();
  }

  static inline const std::string kAll = "red blue*";
  GnomeDesk desk{{.icons = true}};
  harness::Image before;
};

TEST_F(GnomeModeTest, KeepsPressesFromIconsAlsoOfMonitorsThatComeLater) {
  const auto monitors = [&] { return desk.seen().width / GnomeDesk::kMonitorWidth; };
  desk.setMonitors(1);
  ASSERT_TRUE(desk.until([&] { return monitors() == 1 && !desk.hasIcons(1); }));
  turnOn();
  desk.setMonitors(2);
  ASSERT_TRUE(desk.until([&] { return monitors() == 2 && desk.hasIcons(1); }));
  for (const int monitor : {0, 1}) askForMenu(monitor);
  EXPECT_TRUE(staysBare());

  desk.toggleMode();
  EXPECT_TRUE(desk.until([&] { return desk.windows() == kAll; }));
  askForMenu(1);
  EXPECT_TRUE(desk.until([&] { return showsSomething(1); }));
}

TEST_F(GnomeModeTest, CoversIconsThatComeLater) {
  turnOn();
  desk.turnExtension(kIconsExtension, false);
  ASSERT_TRUE(desk.until([&] { return !desk.hasIcons(0); }));
  desk.turnExtension(kIconsExtension, true);
  ASSERT_TRUE(desk.until([&] { return desk.hasIcons(0); }));
  EXPECT_TRUE(staysBare());
  desk.toggleMode();
  EXPECT_TRUE(isAsBefore());
}

TEST_F(GnomeModeTest, KilledItLeavesNoCoverAndTheNextRunShowsWhatItHid) {
  turnOn();
  desk.program().kill();
  EXPECT_TRUE(desk.until([&] { return !desk.isBare(); }));
  EXPECT_EQ(desk.windows(), "");
  desk.launch({"DesktopIcons", "HideActiveApps"});
  desk.toggleMode();
  EXPECT_TRUE(isBare());
  desk.toggleMode();
  EXPECT_TRUE(isAsBefore());
}

TEST_F(GnomeModeTest, ItsCoversGoAndComeWithTheExtensionAndHiddenWindowsWaitForIt) {
  turnOn();
  desk.turnExtension(kOurExtension, false);
  EXPECT_TRUE(desk.until([&] { return !desk.isBare(); }));
  desk.turnExtension(kOurExtension, true);
  EXPECT_TRUE(isBare());

  desk.turnExtension(kOurExtension, false);
  EXPECT_TRUE(desk.until([&] { return !desk.isBare(); }));
  desk.toggleMode();
  EXPECT_TRUE(desk.program().complains("our extension is turned off"));
  desk.turnExtension(kOurExtension, true);
  EXPECT_TRUE(desk.until([&] { return desk.bus().hasOwner(kOurShell); }));
  EXPECT_EQ(desk.windows(), "");
  turnOn();
  desk.toggleMode();
  EXPECT_TRUE(isAsBefore());
}

TEST_F(GnomeModeTest, OutlastsALockedScreenOfWhichNobodyComplains) {
  turnOn();
  desk.lock(true);
  const auto complains = [&] {
    return desk.program().errorOutput().find("no tray") != std::string::npos;
  };
  EXPECT_FALSE(desk.until(complains, std::chrono::seconds(6))) << "it comes back with its button";
  desk.lock(false);
  EXPECT_TRUE(desk.until([&] { return desk.hasButton(); }));
  EXPECT_TRUE(isBare());
  desk.toggleMode();
  EXPECT_TRUE(isAsBefore());
}

TEST_F(GnomeModeTest, WhatItsUserHasTurnedOffStaysOffAndServesOnceItIsTurnedOn) {
  desk.program().kill();
  desk.turnExtension(kOurExtension, false);
  ASSERT_TRUE(desk.until([&] { return desk.isTurnedOff(kOurExtension); }));
  desk.launch({"DesktopIcons", "HideActiveApps"});
  EXPECT_THAT(desk.program().errorOutput(), HasSubstr("its user has turned it off"));
  EXPECT_FALSE(desk.bus().hasOwner(kOurShell));
  for (const bool covers : {true, false}) {
    desk.toggleMode();
    EXPECT_TRUE(desk.until([&] { return desk.hasIcons(0) != covers; })) << "by their own switch";
  }
  EXPECT_TRUE(isAsBefore());

  desk.turnExtension(kOurExtension, true);
  EXPECT_TRUE(desk.until([&] { return desk.hasButton(); }));
  turnOn();
  EXPECT_TRUE(desk.hasIcons(0)) << "below a cover";
  desk.toggleMode();
  EXPECT_TRUE(isAsBefore());
}

}  // namespace
