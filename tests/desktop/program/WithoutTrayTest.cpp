#include <gmock/gmock.h>

#include "desktop/program/ProgramDesk.h"

using harness::AccessibilityClient;
using harness::DeskOptions;
using harness::ProcessEnd;
using harness::SoundServerKind;
using harness::WindowManager;

namespace {

class WithoutTrayTest : public testing::Test {
 protected:
  ProgramDesk program{
      DeskOptions{.windowManager = WindowManager::Openbox, .sound = SoundServerKind::PulseAudio}};
};

TEST_F(WithoutTrayTest, ThePanelIsAnOrdinaryWindowWithTheMenuInIt) {
  ASSERT_TRUE(program.start());
  EXPECT_THAT(program.complaints("tray"), testing::SizeIs(1));
  const auto window = program.desk().openPopover();
  ASSERT_TRUE(window);
  EXPECT_TRUE(window->managed);
  EXPECT_EQ(window->type, "NORMAL");
  EXPECT_EQ(window->name, "Calmdeck");
  EXPECT_FALSE(window->has("SKIP_TASKBAR"));

  const auto other = program.desk().openWindow("Slides", {60, 60, 200, 100});
  program.desk().input().click(other.area.centreX(), other.area.centreY());
  ASSERT_TRUE(program.desk().until([&] { return program.desk().windows().active() == other.id; }));
  ASSERT_TRUE(program.muteByTheMode()) << "it stays open";

  const AccessibilityClient reader(program.desk());
  const auto menu = reader.await("Menu");
  ASSERT_TRUE(menu);
  program.desk().input().click(menu->area.centreX(), menu->area.centreY());
  ASSERT_TRUE(program.says("Right click!"));
  ASSERT_TRUE(program.desk().awaitWindow([&](const harness::WindowInfo& shown) {
    return harness::ofClass("calmdeck")(shown) && shown.id != window->id;
  }));
  for (const char* key : {"Down", "Return"}) program.desk().input().key(key);
  EXPECT_EQ(program.program().waitForExit(), (ProcessEnd{0, 0}));
  EXPECT_TRUE(program.sinkMuted(true));
}

TEST_F(WithoutTrayTest, ASecondStartShowsThePanelOfTheFirst) {
  ASSERT_TRUE(program.start());
  program.desk().input().key("Escape");
  ASSERT_TRUE(program.closes());
  const auto second = program.desk().run({CALMDECK_PROGRAM});
  EXPECT_TRUE(second.succeeded()) << second.errorOutput;
  EXPECT_EQ(second.output + second.errorOutput, "");
  EXPECT_TRUE(program.opens());
  EXPECT_TRUE(program.muteByTheMode());
}

}  // namespace
