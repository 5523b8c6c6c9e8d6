// What a person does while the mode is on, and what the desktop may show before it.

#include <gmock/gmock.h>

#include <tuple>

#include "desktop/program/ModeDesk.h"

using harness::Button;
using harness::Image;

namespace {

class ModeUseTest : public testing::TestWithParam<FullDesktop> {
 protected:
  ModeDesk mode{GetParam()};
  harness::XDesk& desk = mode.desk();
};

INSTANTIATE_TEST_SUITE_P(On, ModeUseTest, testing::ValuesIn(kFullDesktops),
                         [](const auto& row) { return row.param.name; });

TEST_P(ModeUseTest, EachSwitchActsAtOnceWhileTheModeIsOn) {
  ASSERT_TRUE(mode.openWindows());
  ASSERT_TRUE(mode.startProgram());
  ASSERT_TRUE(mode.clickMaster());
  ASSERT_TRUE(mode.inTheMode(true));
  const struct {
    const char* name;
    testing::AssertionResult (ModeDesk::*effect)(bool);
  } features[] = {{"Desktop icons", &ModeDesk::covered},
                  {"Notifications", &ModeDesk::quiet},
                  {"Other applications", &ModeDesk::othersHidden},
                  {"Speaker", &ModeDesk::muted},
                  {"Wallpaper", &ModeDesk::showsChosenPicture}};
  for (const auto& feature : features) {
    for (const bool on : {false, true}) {
      ASSERT_TRUE(mode.click(feature.name)) << feature.name;
      EXPECT_TRUE((mode.*feature.effect)(on)) << feature.name;
    }
  }
  ASSERT_TRUE(mode.inTheMode(true));
  ASSERT_TRUE(mode.closePanel());
  EXPECT_TRUE(mode.bare());
}

TEST_P(ModeUseTest, AClickOnACoverDoesNothing) {
  ASSERT_TRUE(mode.startProgram());
  ASSERT_TRUE(mode.clickMaster());
  ASSERT_TRUE(mode.inTheMode(true));
  ASSERT_TRUE(mode.closePanel());
  ASSERT_TRUE(mode.bare());
  const auto slides = desk.openWindow("Slides", {400, 200, 400, 250});
  desk.windows().activate(slides.id);
  ASSERT_TRUE(desk.until([&] { return desk.windows().active() == slides.id; }));
  const Image before = mode.photograph();
  const std::size_t windows = desk.windows().all().size();
  for (const Button button : {Button::Left, Button::Right, Button::Middle}) {
    for (const auto& [x, y] : {std::pair{40, 40}, {40, 120}, {900, 600}, {1700, 500}})
      desk.input().click(x, y, button);
  }
  EXPECT_FALSE(changedArea(before, mode.photograph()));
  EXPECT_EQ(desk.windows().active(), slides.id);
  EXPECT_EQ(desk.windows().all().size(), windows);
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

  ASSERT_TRUE(mode.click("Wallpaper"));
  ASSERT_TRUE(mode.clickMaster());
  ASSERT_TRUE(mode.covered(true));
  ASSERT_TRUE(mode.closePanel());
  EXPECT_EQ(mode.photograph().part(second), before) << "the icons alone, after a whole round";
}

using Beginning = std::tuple<FullDesktop, ModeDesk::Start>;

class ModeBackdropTest : public testing::TestWithParam<Beginning> {
 protected:
  ModeDesk mode{std::get<0>(GetParam()), std::get<1>(GetParam())};
};

INSTANTIATE_TEST_SUITE_P(On, ModeBackdropTest,
                         testing::Combine(testing::ValuesIn(kFullDesktops),
                                          testing::Values(ModeDesk::Start::Colour,
                                                          ModeDesk::Start::NothingSet)),
                         [](const auto& row) {
                           const bool colour = std::get<1>(row.param) == ModeDesk::Start::Colour;
                           return std::get<0>(row.param).name +
                                  std::string(colour ? "WithAColour" : "WithNothingSet");
                         });

TEST_P(ModeBackdropTest, ComesBackToThePixelAndTheKey) {
  ASSERT_TRUE(mode.startProgram());
  const Image screen = mode.photograph();
  const std::string settings = mode.backdropSettings();
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(mode.clickMaster());
    ASSERT_TRUE(mode.inTheMode(true));
    ASSERT_TRUE(mode.closePanel());
    EXPECT_TRUE(mode.bare());
    ASSERT_TRUE(mode.clickMaster());
    ASSERT_TRUE(mode.inTheMode(false));
    ASSERT_TRUE(mode.closePanel());
    EXPECT_EQ(mode.backdropSettings(), settings);
    EXPECT_TRUE(mode.looksAsIn(screen));
  }
}

}  // namespace
