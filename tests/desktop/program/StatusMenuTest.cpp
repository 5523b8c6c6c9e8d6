#include <gmock/gmock.h>

#include <algorithm>

#include "desktop/program/ProgramDesk.h"

using harness::DeskOptions;
using harness::Panel;
using harness::ProcessEnd;
using harness::SoundServerKind;
using harness::WindowManager;

namespace {

class StatusMenuTest : public testing::TestWithParam<Panel> {
 protected:
  ProgramDesk program{DeskOptions{.windowManager = WindowManager::Openbox,
                                  .panel = GetParam(),
                                  .sound = SoundServerKind::PulseAudio}};
};

INSTANTIATE_TEST_SUITE_P(EachPanel, StatusMenuTest,
                         testing::Values(Panel::XfcePanel, Panel::Tint2, Panel::LxqtPanel),
                         testing::PrintToStringParamName());

TEST_P(StatusMenuTest, ItOpensInThePanelsPlaceAndTheNextLeftClickOpensThePanel) {
  ASSERT_TRUE(program.start());
  const std::set<xcb_window_t> others = program.desk().windows().viewable();
  ASSERT_TRUE(program.openMenu());
  program.desk().input().key("Escape");
  EXPECT_TRUE(program.closes());
  ASSERT_TRUE(program.desk().until(
      [&] { return std::ranges::includes(others, program.desk().windows().viewable()); }));
  ASSERT_TRUE(program.clickIcon());
  ASSERT_TRUE(program.says("Left click!"));
  EXPECT_TRUE(program.opens());
}

// From the menu's beginning Up goes round to its last item.
TEST_P(StatusMenuTest, QuitIsTheLastItemAndLeavesTheModesEffects) {
  ASSERT_TRUE(program.start());
  ASSERT_TRUE(program.muteByTheMode());
  ASSERT_TRUE(program.openMenu());
  ASSERT_TRUE(program.says("Right click!"));
  program.desk().input().key("Escape");
  ASSERT_TRUE(program.openMenu()) << "a second time";
  ASSERT_TRUE(program.says("Right click!"));
  for (const char* key : {"Up", "Return"}) program.desk().input().key(key);
  EXPECT_EQ(program.program().waitForExit(), (ProcessEnd{0, 0}));
  EXPECT_TRUE(program.sinkMuted(true));
  EXPECT_THAT(program.complaints(""), testing::IsEmpty());
}

}  // namespace
