#include <fstream>
#include <string>

#include "desktop/program/ProgramDesk.h"

using harness::AccessibilityClient;
using harness::DeskOptions;
using harness::Panel;
using harness::Rect;
using harness::SoundServerKind;
using harness::WindowManager;

namespace {

class PanelUseTest : public testing::Test {
 protected:
  ProgramDesk program{DeskOptions{.windowManager = WindowManager::Openbox,
                                  .panel = Panel::XfcePanel,
                                  .sound = SoundServerKind::PulseAudio}};
  const harness::Input& input = program.desk().input();
};

TEST_F(PanelUseTest, TheKeyboardAloneDoesEverything) {
  ASSERT_TRUE(program.start());
  for (const char* key : {"Tab", "Tab", "Tab", "Tab", "Tab", "space"}) input.key(key);
  ASSERT_TRUE(program.switchedOn({"Speaker"}));
  for (const char* key : {"Tab", "Tab", "space"}) input.key(key);
  EXPECT_TRUE(program.sinkMuted(true)) << "Tab goes round";
  EXPECT_TRUE(program.switchedOn({"Presentation mode", "Speaker"}));
  input.key("space");
  EXPECT_TRUE(program.sinkMuted(false));
  input.key("Escape");
  EXPECT_TRUE(program.closes());
}

TEST_F(PanelUseTest, AScreenReaderFlipsWhatItIsToldOf) {
  ASSERT_TRUE(program.start());
  const AccessibilityClient reader(program.desk());
  std::set<std::string> on;
  for (const char* name : {"Desktop icons", "Notifications", "Other applications", "Speaker"}) {
    const auto element = reader.await(name);
    ASSERT_TRUE(element && reader.act(*element)) << name;
    on.insert(name);
  }
  ASSERT_TRUE(program.switchedOn(on));
  const auto master = reader.await("Presentation mode");
  ASSERT_TRUE(master && reader.act(*master));
  EXPECT_TRUE(program.sinkMuted(true));
  on.insert("Presentation mode");
  EXPECT_TRUE(program.switchedOn(on));
  ASSERT_TRUE(reader.act(*master));
  EXPECT_TRUE(program.sinkMuted(false));
  on.erase("Presentation mode");
  EXPECT_TRUE(program.switchedOn(on));
}

TEST_F(PanelUseTest, ItsProcessIsFoundByTheProgramsName) {
  ASSERT_TRUE(program.start());
  std::ifstream file("/proc/" + std::to_string(program.program().pid()) + "/comm");
  std::string name;
  ASSERT_TRUE(std::getline(file, name));
  EXPECT_EQ(name, "calmdeck");
}

TEST_F(PanelUseTest, AClickAnywhereElseClosesIt) {
  const auto window = program.desk().openWindow("Slides", {60, 60, 400, 300});
  const Rect bar = program.desk().panelAreas().at(0);
  const struct {
    const char* where;
    int x, y;
  } places[] = {{"another window", window.area.centreX(), window.area.centreY()},
                {"the bare desktop", 700, 60},
                {"the other monitor", 1700, 300},
                {"the panel beside the icon", bar.centreX(), bar.centreY()}};
  ASSERT_TRUE(program.start());
  for (const auto& place : places) {
    ASSERT_FALSE(program.popoverArea().contains(place.x, place.y));
    input.click(place.x, place.y);
    EXPECT_TRUE(program.closes()) << place.where;
    ASSERT_TRUE(program.clickIcon());
    ASSERT_TRUE(program.opens()) << place.where;
  }
}

}  // namespace
