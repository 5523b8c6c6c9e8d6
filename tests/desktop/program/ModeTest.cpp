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

enum class End { Quit, Term, Kill };

/// What each of these leaves behind differs by the desktop, and not by the way to the end.
class ModeEndTest : public testing::TestWithParam<std::pair<FullDesktop, End>> {
 protected:
  void end() {
    harness::Process& process = mode.program().program();
    switch (GetParam().second) {
      case End::Quit:
        EXPECT_TRUE(mode.program().openMenu() && mode.program().quits());
        break;
      case End::Term:
        EXPECT_EQ(process.terminate(harness::kPatience), (harness::ProcessEnd{0, 0}));
        break;
      case End::Kill:
        process.kill();
    }
  }

  ModeDesk mode{GetParam().first};
};

INSTANTIATE_TEST_SUITE_P(On, ModeEndTest,
                         testing::Values(std::pair(kFullDesktops[0], End::Quit),
                                         std::pair(kFullDesktops[1], End::Term),
                                         std::pair(kFullDesktops[2], End::Kill),
                                         std::pair(kFullDesktops[3], End::Kill),
                                         std::pair(kFullDesktops[4], End::Quit)),
                         [](const auto& row) { return row.param.first.name; });

// However the program ends while the mode is on, what it did to the desktop stays.
TEST_P(ModeEndTest, TheEffectsStayAndTheNextOneShowsWhatWasHidden) {
  ASSERT_TRUE(mode.openWindows());
  ASSERT_TRUE(mode.startProgram());
  const std::string windows = mode.windowsNow();
  ASSERT_TRUE(mode.clickMaster());
  ASSERT_TRUE(mode.inTheMode(true));
  ASSERT_TRUE(mode.closePanel());
  const std::string settings = mode.backdropSettings();

  end();
  EXPECT_TRUE(mode.covered(false));
  (void)mode.photograph();
  EXPECT_TRUE(mode.muted(true));
  EXPECT_TRUE(mode.quiet(true));
  EXPECT_TRUE(mode.othersHidden(true));
  EXPECT_TRUE(mode.showsChosenPicture(true));
  EXPECT_EQ(mode.backdropSettings(), settings);

  ASSERT_TRUE(mode.startProgram());
  ASSERT_TRUE(mode.clickMaster());
  ASSERT_TRUE(mode.inTheMode(true));
  ASSERT_TRUE(mode.clickMaster());
  EXPECT_TRUE(mode.covered(false));
  EXPECT_TRUE(mode.muted(false));
  EXPECT_TRUE(mode.quiet(false));
  EXPECT_TRUE(mode.othersHidden(false));
  ASSERT_TRUE(mode.closePanel());
  EXPECT_TRUE(mode.desk().until([&] { return mode.windowsNow() == windows; }));
  EXPECT_EQ(mode.windowsNow(), windows);
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
