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
  /// As a screen reader finds them below the button.
  [[nodiscard]] std::vector<std::string> itemsOfTheMenu() {
    std::vector<std::string> names;
    for (const auto& element : AccessibilityClient(program.desk()).elements())
      if (element.role == "menu item" && element.is("showing")) names.push_back(element.name);
    return names;
  }

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
  const auto shown = program.desk().awaitWindow([&](const harness::WindowInfo& popup) {
    return harness::ofClass("calmdeck")(popup) && popup.id != window->id;
  });
  ASSERT_TRUE(shown);
  EXPECT_GE(shown->area.y, menu->area.bottom()) << "it drops down from its button";
  const auto master = reader.await(ProgramDesk::kMaster);
  ASSERT_TRUE(master);
  EXPECT_FALSE(shown->area.intersects(master->area));
  program.desk().input().key("Escape");
  ASSERT_TRUE(program.desk().until([&] { return itemsOfTheMenu().empty(); }));

  // And all of it from the keyboard.
  program.desk().input().key("F10");
  ASSERT_TRUE(program.says("Right click!"));
  ASSERT_TRUE(program.desk().until([&] { return !itemsOfTheMenu().empty(); }));
  EXPECT_THAT(itemsOfTheMenu(), testing::Contains("Quit"));
  for (const char* key : {"Up", "Return"}) program.desk().input().key(key);
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
