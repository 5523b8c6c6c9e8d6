// However the program ends while the mode is on, what it did to the desktop stays.

#include <csignal>
#include <tuple>

#include "desktop/program/ModeDesk.h"

using harness::ProcessEnd;

namespace {

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
