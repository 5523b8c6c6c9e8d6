// What comes and goes around the program while the mode is on.

#include <gmock/gmock.h>

#include <sstream>

#include "desktop/program/ModeDesk.h"

using harness::Image;
using harness::Rect;

namespace {

/// What is told of pictures; file managers write the rest anew when they end or a monitor goes.
std::vector<std::string> linesOnPictures(const std::string& settings) {
  std::vector<std::string> found;
  std::istringstream lines(settings);
  for (std::string line; std::getline(lines, line);) {
    for (const char* word : {"wallpaper", "Wallpaper", "last-image", "picture-"}) {
      if (line.find(word) == std::string::npos) continue;
      found.push_back(line);
      break;
    }
  }
  return found;
}

class ModePeersTest : public testing::TestWithParam<FullDesktop> {
 protected:
  void SetUp() override {
    ASSERT_TRUE(mode.openWindows());
    ASSERT_TRUE(mode.startProgram());
    before = mode.photograph();
    settings = mode.backdropSettings();
    ASSERT_TRUE(mode.clickMaster());
    ASSERT_TRUE(mode.inTheMode(true));
    ASSERT_TRUE(mode.closePanel());
    ASSERT_TRUE(mode.bare());
  }

  ModeDesk mode{GetParam()};
  harness::XDesk& desk = mode.desk();
  Image before;
  std::string settings;
};

INSTANTIATE_TEST_SUITE_P(On, ModePeersTest, testing::ValuesIn(kFullDesktops),
                         [](const auto& row) { return row.param.name; });

TEST_P(ModePeersTest, AMonitorThatComesIsCoveredAndOneThatWentHoldsNothingUp) {
  const std::vector<Rect> both = desk.server().monitors();
  desk.server().setMonitors({both[0]});
  EXPECT_TRUE(mode.covered(true));
  EXPECT_TRUE(mode.bare());
  desk.server().setMonitors(both);
  EXPECT_TRUE(mode.covered(true));
  EXPECT_TRUE(mode.bare());
  desk.server().setMonitors({both[0]});
  EXPECT_TRUE(mode.covered(true));

  ASSERT_TRUE(mode.clickMaster());
  EXPECT_TRUE(mode.inTheMode(false));
  ASSERT_TRUE(mode.closePanel());
  EXPECT_TRUE(mode.showsIcons());
  EXPECT_THAT(linesOnPictures(mode.backdropSettings()),
              testing::IsSupersetOf(linesOnPictures(settings)));
}

TEST_P(ModePeersTest, ProgramsOfTheDesktopThatStartAnewChangeNothing) {
  desk.startNotifications(GetParam().notifications);
  EXPECT_TRUE(mode.quiet(true)) << "a new notification daemon";
  desk.startIcons(GetParam().icons);
  EXPECT_TRUE(mode.covered(true)) << "new icons";
  EXPECT_TRUE(mode.bare()) << "new icons";
  desk.startWindowManager(GetParam().windowManager);
  EXPECT_TRUE(mode.covered(true)) << "a new window manager";
  EXPECT_TRUE(mode.bare()) << "a new window manager";
  const auto slides = desk.openWindow("Slides", {400, 200, 400, 250});
  const Image shown = mode.photograph();
  EXPECT_NE(shown.part(slides.area), before.part(slides.area));
  EXPECT_TRUE(mode.bare({slides.area}));
  desk.windows().close(slides.id);

  ASSERT_TRUE(mode.clickMaster());
  EXPECT_TRUE(mode.inTheMode(false));
  EXPECT_THAT(linesOnPictures(mode.backdropSettings()),
              testing::IsSupersetOf(linesOnPictures(settings)));
}

}  // namespace
