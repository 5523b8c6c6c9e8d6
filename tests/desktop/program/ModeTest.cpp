// The whole mode, by real clicks on real desktops.

#include <gmock/gmock.h>

#include "desktop/program/ModeDesk.h"

using harness::Image;
using harness::Rect;
using harness::WindowInfo;

namespace {

/// With windows, and the program with its panel closed.
class ModeTest : public testing::TestWithParam<FullDesktop>, public ModeDesk {
 protected:
  ModeTest() : ModeDesk(GetParam()) {}
  void SetUp() override {
    ASSERT_TRUE(openWindows());
    ASSERT_TRUE(startClosed());
    windows = windowsNow();
  }
  void turnMode(bool on) {
    ASSERT_TRUE(turnMaster());
    ASSERT_NO_FATAL_FAILURE(expectTheMode(on));
    ASSERT_TRUE(close());
  }
  void expectTheWindows() {
    EXPECT_TRUE(desk.until([&] { return windowsNow() == windows; }));
    EXPECT_EQ(windowsNow(), windows);
  }

  std::string windows;
};

INSTANTIATE_TEST_SUITE_P(On, ModeTest, testing::ValuesIn(kFullDesktops),
                         [](const auto& row) { return row.param.name; });

TEST_P(ModeTest, OneClickAppliesEverythingAndAnotherTakesItBack) {
  const std::vector<Image> screen = photograph();
  const std::string settings = backdropSettings();
  const Rect icon = desk.trayIcon().value();
  const Image off = desk.screen().area(icon);
  ASSERT_NO_FATAL_FAILURE(expectTheMode(false));

  ASSERT_NO_FATAL_FAILURE(turnMode(true));
  EXPECT_TRUE(bare());
  EXPECT_NE(backdropSettings(), settings);
  const Image covered = photograph().front();
  EXPECT_TRUE(desk.screen().area(icon) != off) << "the icon is another";

  const WindowInfo slides = desk.openWindow("Slides", {400, 200, 400, 250});
  const auto changed = changedArea(covered, photograph().front());
  ASSERT_TRUE(changed);
  EXPECT_TRUE(changed->contains(slides.area)) << "a window that opens now is above the cover";
  EXPECT_TRUE(bare({slides.area}));
  desk.windows().close(slides.id);
  ASSERT_TRUE(desk.until([&] { return !desk.windows().info(slides.id); }));

  ASSERT_NO_FATAL_FAILURE(turnMode(false));
  expectTheWindows();
  EXPECT_EQ(backdropSettings(), settings);
  EXPECT_TRUE(photograph() == screen) << "the icon too";
  EXPECT_THAT(complaints(""), testing::IsEmpty());
  EXPECT_THAT(program->errorOutput(),
              testing::Not(testing::ContainsRegex("Q[A-Z][A-Za-z]+::[a-z]")))
      << "Qt was used wrongly";
}

// However the program ends while the mode is on, what it did to the desktop stays.
TEST_P(ModeTest, AnEndLeavesTheEffectsAndTheNextOneShowsWhatWasHidden) {
  ASSERT_NO_FATAL_FAILURE(turnMode(true));
  const std::string settings = backdropSettings();
  if (GetParam().isKilled) {
    program->kill();
  } else {
    ASSERT_TRUE(openMenu() && quits());
  }
  EXPECT_TRUE(covered(false));
  (void)photograph();
  EXPECT_TRUE(sinkMuted(true));
  EXPECT_TRUE(quiet(true));
  EXPECT_TRUE(othersHidden(true));
  EXPECT_TRUE(showsChosenPicture(true));
  EXPECT_EQ(backdropSettings(), settings);

  ASSERT_TRUE(startClosed());
  ASSERT_NO_FATAL_FAILURE(turnMode(true));
  ASSERT_TRUE(turnMaster());
  EXPECT_TRUE(covered(false));
  EXPECT_TRUE(sinkMuted(false));
  EXPECT_TRUE(quiet(false));
  EXPECT_TRUE(othersHidden(false));
  ASSERT_TRUE(close());
  expectTheWindows();
}

TEST(ModeOnTheBareRoot, CoversShowWhatTheRootWindowShows) {
  ModeDesk mode(kFullDesktops.back());
  const harness::XDesk& desk = mode.desk;
  ASSERT_TRUE(mode.startClosed());
  const Rect second = desk.server().monitors().back();
  const Image before = desk.screen().area(second);
  ASSERT_TRUE(mode.turnMaster());
  ASSERT_NO_FATAL_FAILURE(mode.expectTheMode(true));
  constexpr std::uint32_t kUsers = 0xc02020;
  desk.mustRun({"hsetroot", "-solid", "#c02020"});
  EXPECT_TRUE(desk.until([&] {
    return desk.screen().pixel(second.centreX(), second.centreY()) == kUsers;
  })) << "what the user sets while the mode is on";
  ASSERT_TRUE(mode.turnMaster());
  ASSERT_NO_FATAL_FAILURE(mode.expectTheMode(false));
  EXPECT_EQ(desk.screen().area(second), before);

  ASSERT_TRUE(mode.turn("Change wallpaper"));
  ASSERT_TRUE(mode.turnMaster());
  ASSERT_TRUE(mode.covered(true));
  ASSERT_TRUE(mode.close());
  EXPECT_EQ(mode.photograph().back(), before) << "the icons alone, after a whole round";
}

}  // namespace
