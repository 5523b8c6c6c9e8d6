// What a person does while the mode is on, and what the desktop may show before it.

#include <gmock/gmock.h>

#include <csignal>
#include <sstream>
#include <tuple>

#include "desktop/program/ModeDesk.h"

using harness::Image;
using harness::ProcessEnd;
using harness::Rect;

namespace {

// --- What comes and goes around the program while the mode is on ---

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

// --- However the program ends while the mode is on: what it did to the desktop stays, its own
// windows ---

enum class End { Quit, Term, Kill };

std::string nameOf(End end) {
  return end == End::Quit ? "Quit" : end == End::Term ? "Terminated" : "Killed";
}

class ModeEndTest : public testing::TestWithParam<std::tuple<FullDesktop, End>> {
 protected:
  /// By the keyboard: from the menu's beginning Up goes round to its last item.
  void quitByTheMenu() {
    ASSERT_TRUE(mode.program().openMenu());
    for (const char* key : {"Up", "Return"}) mode.desk().input().key(key);
    EXPECT_EQ(mode.program().program().waitForExit(), (ProcessEnd{0, 0}));
  }

  void end() {
    harness::Process& process = mode.program().program();
    switch (std::get<1>(GetParam())) {
      case End::Quit:
        ASSERT_NO_FATAL_FAILURE(quitByTheMenu());
        break;
      case End::Term:
        process.signal(SIGTERM);
        EXPECT_EQ(process.waitForExit(), (ProcessEnd{0, 0}));
        break;
      case End::Kill:
        process.kill();
        break;
    }
  }

  ModeDesk mode{std::get<0>(GetParam())};
};

INSTANTIATE_TEST_SUITE_P(On, ModeEndTest,
                         testing::Combine(testing::ValuesIn(kFullDesktops),
                                          testing::Values(End::Quit, End::Term, End::Kill)),
                         [](const auto& row) {
                           return std::get<0>(row.param).name + nameOf(std::get<1>(row.param));
                         });

TEST_P(ModeEndTest, TheEffectsStayAndTheNextOneShowsWhatWasHidden) {
  ASSERT_TRUE(mode.openWindows());
  ASSERT_TRUE(mode.startProgram());
  const std::string windows = mode.windowsNow();
  ASSERT_TRUE(mode.clickMaster());
  ASSERT_TRUE(mode.inTheMode(true));
  ASSERT_TRUE(mode.closePanel());
  const std::string settings = mode.backdropSettings();

  ASSERT_NO_FATAL_FAILURE(end());
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

}  // namespace
