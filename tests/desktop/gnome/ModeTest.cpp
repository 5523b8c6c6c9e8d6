#include <gmock/gmock.h>

#include "desktop/gnome/GnomeDesk.h"

using gnome_test::GnomeDesk;
using testing::HasSubstr;

namespace {

constexpr const char* kExtension = "shell@calmdeck.org";

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
    desk.toggle();
    ASSERT_TRUE(isBare());
    EXPECT_EQ(desk.windows(), "");
  }
  [[nodiscard]] testing::AssertionResult isBare() {
    if (desk.until([&] { return desk.isBare(); })) return testing::AssertionSuccess();
    return testing::AssertionFailure() << desk.windows() << '\n' << desk.program().errorOutput();
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

TEST_F(GnomeModeTest, CoversAndHidesAndBringsEverythingBack) {
  for (int round = 0; round < 2; ++round) {
    turnOn();
    desk.toggle();
    EXPECT_TRUE(isAsBefore());
  }
}

TEST_F(GnomeModeTest, CoversMonitorsAndIconsThatComeLater) {
  turnOn();
  desk.setMonitors(1);
  EXPECT_TRUE(desk.until([&] { return desk.seen().width == GnomeDesk::kMonitorWidth; }));
  EXPECT_TRUE(isBare());
  desk.setMonitors(2);
  EXPECT_TRUE(desk.until([&] { return desk.seen().width == 2 * GnomeDesk::kMonitorWidth; }));
  EXPECT_TRUE(isBare());
}

TEST_F(GnomeModeTest, KilledItLeavesNoCoverAndTheNextRunShowsWhatItHid) {
  turnOn();
  desk.program().kill();
  EXPECT_TRUE(desk.until([&] { return !desk.isBare(); }));
  EXPECT_EQ(desk.windows(), "");
  desk.launch({"DesktopIcons", "HideActiveApps"});
  desk.toggle();
  EXPECT_TRUE(isBare());
  desk.toggle();
  EXPECT_TRUE(isAsBefore());
}

TEST_F(GnomeModeTest, ItsCoversGoAndComeWithTheExtension) {
  turnOn();
  desk.turnExtension(kExtension, false);
  EXPECT_TRUE(desk.until([&] { return !desk.isBare(); }));
  desk.turnExtension(kExtension, true);
  EXPECT_TRUE(isBare());
  desk.toggle();
  EXPECT_TRUE(isAsBefore());
}

}  // namespace
