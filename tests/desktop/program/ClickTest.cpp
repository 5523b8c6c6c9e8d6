#include <ostream>

#include "desktop/program/ProgramDesk.h"

using harness::DeskOptions;
using harness::Panel;
using harness::SoundServerKind;
using harness::WindowManager;

namespace {

/// A desktop as people have them.
struct Everyday {
  const char* name;
  WindowManager windowManager;
  Panel panel;
  SoundServerKind sound;
};

constexpr Everyday kDesktops[] = {
    {"XfcePanelPulseAudio", WindowManager::Xfwm4, Panel::XfcePanel, SoundServerKind::PulseAudio},
    {"Tint2PipeWire", WindowManager::Openbox, Panel::Tint2, SoundServerKind::PipeWire},
    {"LxqtPanelPipeWire", WindowManager::Openbox, Panel::LxqtPanel, SoundServerKind::PipeWire},
    {"MatePanelPulseAudio", WindowManager::Marco, Panel::MatePanel, SoundServerKind::PulseAudio},
};

// What a test runner lists the case under.
void PrintTo(const Everyday& row, std::ostream* stream) {
  *stream << row.name;
}

class ClickTest : public testing::TestWithParam<Everyday> {
 protected:
  ProgramDesk program{DeskOptions{.windowManager = GetParam().windowManager,
                                  .panel = GetParam().panel,
                                  .sound = GetParam().sound}};
};

INSTANTIATE_TEST_SUITE_P(EachDesktop, ClickTest, testing::ValuesIn(kDesktops),
                         [](const auto& row) { return row.param.name; });

TEST_P(ClickTest, TheTrayIconOpensThePanelWhoseSwitchesMuteTheSink) {
  ASSERT_TRUE(program.start());
  const harness::Image off = program.iconImage();

  ASSERT_TRUE(program.clickIcon());
  ASSERT_TRUE(program.says("Left click!"));
  ASSERT_TRUE(program.closes());
  ASSERT_TRUE(program.clickIcon());
  ASSERT_TRUE(program.says("Left click!"));
  ASSERT_TRUE(program.opens());

  ASSERT_TRUE(program.clickSwitch(ProgramDesk::kSpeaker));
  ASSERT_TRUE(program.switchedOn({ProgramDesk::kSpeaker}));
  EXPECT_TRUE(program.sinkMuted(false)) << "the mode is off";
  ASSERT_TRUE(program.clickSwitch(ProgramDesk::kMaster));
  EXPECT_TRUE(program.sinkMuted(true));
  EXPECT_TRUE(program.desk().until([&] { return program.iconImage() != off; }));

  ASSERT_TRUE(program.clickSwitch(ProgramDesk::kMaster));
  EXPECT_TRUE(program.sinkMuted(false));
  EXPECT_TRUE(program.desk().until([&] { return program.iconImage() == off; }));
}

}  // namespace
