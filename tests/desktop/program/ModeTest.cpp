// The whole mode, by real clicks on real desktops.

#include <gmock/gmock.h>

#include "desktop/program/ModeDesk.h"

using harness::Image;
using harness::WindowInfo;

namespace {

class ModeTest : public testing::TestWithParam<FullDesktop> {
 protected:
  ModeDesk mode{GetParam()};
  harness::XDesk& desk = mode.desk();
};

INSTANTIATE_TEST_SUITE_P(On, ModeTest, testing::ValuesIn(kFullDesktops),
                         [](const auto& row) { return row.param.name; });

TEST_P(ModeTest, OneClickAppliesEverythingAndAnotherTakesItBack) {
  ASSERT_TRUE(mode.openWindows());
  ASSERT_TRUE(mode.startProgram());
  const Image screen = mode.photograph();
  const std::string windows = mode.windowsNow();
  const std::string settings = mode.backdropSettings();
  const Image icon = mode.program().iconImage();
  ASSERT_TRUE(mode.inTheMode(false));

  ASSERT_TRUE(mode.clickMaster());
  ASSERT_TRUE(mode.inTheMode(true));
  EXPECT_TRUE(desk.until([&] { return mode.program().iconImage() != icon; }));
  ASSERT_TRUE(mode.closePanel());
  EXPECT_TRUE(mode.bare());
  EXPECT_NE(mode.backdropSettings(), settings);

  const Image covered = mode.photograph();
  const WindowInfo slides = desk.openWindow("Slides", {400, 200, 400, 250});
  const auto changed = changedArea(covered, mode.photograph());
  ASSERT_TRUE(changed);
  EXPECT_TRUE(changed->contains(slides.area)) << "a window that opens now is above the cover";
  EXPECT_TRUE(mode.bare({slides.area}));
  desk.windows().close(slides.id);
  ASSERT_TRUE(desk.until([&] { return !desk.windows().info(slides.id); }));

  ASSERT_TRUE(mode.clickMaster());
  ASSERT_TRUE(mode.inTheMode(false));
  ASSERT_TRUE(mode.closePanel());
  EXPECT_TRUE(desk.until([&] { return mode.windowsNow() == windows; }));
  EXPECT_EQ(mode.windowsNow(), windows);
  EXPECT_EQ(mode.backdropSettings(), settings);
  EXPECT_TRUE(mode.looksAsIn(screen)) << "the icon too";
  EXPECT_THAT(mode.program().complaints(""), testing::IsEmpty());
  EXPECT_THAT(mode.program().program().errorOutput(),
              testing::Not(testing::ContainsRegex("Q[A-Z][A-Za-z]+::[a-z]")))
      << "Qt was used wrongly";
}

TEST(ModeOnTheBareRoot, CoversShowWhatTheRootWindowShows) {
  ModeDesk mode(kFullDesktops.back());
  harness::XDesk& desk = mode.desk();
  ASSERT_TRUE(mode.startProgram());
  const harness::Rect second = desk.server().monitors().back();
  const Image before = desk.screen().area(second);
  ASSERT_TRUE(mode.clickMaster());
  ASSERT_TRUE(mode.inTheMode(true));
  constexpr std::uint32_t kUsers = 0xc02020;
  ASSERT_TRUE(desk.run({"hsetroot", "-solid", "#c02020"}).succeeded());
  EXPECT_TRUE(desk.until([&] {
    return desk.screen().pixel(second.centreX(), second.centreY()) == kUsers;
  })) << "what the user sets while the mode is on";
  ASSERT_TRUE(mode.clickMaster());
  ASSERT_TRUE(mode.inTheMode(false));
  EXPECT_EQ(desk.screen().area(second), before);

  ASSERT_TRUE(mode.click("Change wallpaper"));
  ASSERT_TRUE(mode.clickMaster());
  ASSERT_TRUE(mode.covered(true));
  ASSERT_TRUE(mode.closePanel());
  EXPECT_EQ(mode.photograph().part(second), before) << "the icons alone, after a whole round";
}

}  // namespace
