#include <gmock/gmock.h>

#include <ostream>
#include <tuple>

#include "desktop/program/ProgramDesk.h"

using harness::DeskOptions;
using harness::Panel;
using harness::SoundServer;
using harness::SoundServerKind;
using harness::Stream;
using harness::WindowManager;
using testing::SizeIs;

namespace {

DeskOptions deskWith(Panel panel, SoundServerKind sound) {
  return {.windowManager = WindowManager::Openbox, .panel = panel, .sound = sound};
}

class PanelFaultsTest : public testing::TestWithParam<Panel> {
 protected:
  ProgramDesk program{deskWith(GetParam(), SoundServerKind::PulseAudio)};
};

INSTANTIATE_TEST_SUITE_P(EachPanel, PanelFaultsTest,
                         testing::Values(Panel::XfcePanel, Panel::Tint2, Panel::MatePanel),
                         testing::PrintToStringParamName());

/// MATE's tray is a program of its own, which does not hang with the panel.
class HungPanelTest : public PanelFaultsTest {};

INSTANTIATE_TEST_SUITE_P(EachPanel, HungPanelTest, testing::Values(Panel::XfcePanel, Panel::Tint2),
                         testing::PrintToStringParamName());

TEST_P(HungPanelTest, APanelThatHangsBeforeTheStartHoldsNothingUp) {
  program.desk().panel().freezeGroup();
  ASSERT_TRUE(program.start());
  EXPECT_TRUE(program.muteByTheMode());
  ASSERT_TRUE(program.program().waitForLine("does not answer", harness::kPatience, Stream::Error));
  EXPECT_THAT(program.complaints("tray"), SizeIs(1));
  program.desk().panel().thawGroup();
  ASSERT_TRUE(program.desk().trayIcon());
}

TEST_P(PanelFaultsTest, APanelThatIsKilledAndStartedAgainShowsTheIconAgain) {
  ASSERT_TRUE(program.start());
  ASSERT_TRUE(program.muteByTheMode());
  const harness::Image on = program.iconImage();
  program.desk().panel().kill();
  program.desk().startPanel(GetParam());
  ASSERT_TRUE(program.desk().until([&] { return program.iconImage() == on; }));
  program.desk().input().key("Escape");
  ASSERT_TRUE(program.closes());
  ASSERT_TRUE(program.clickIcon());
  ASSERT_TRUE(program.says("Left click!"));
  ASSERT_TRUE(program.opens());
  ASSERT_TRUE(program.clickSwitch(ProgramDesk::kMaster));
  EXPECT_TRUE(program.sinkMuted(false));
}

// --- Sound ---

struct SoundFault {
  const char* name;
  void (*begin)(SoundServer&);
  void (*end)(SoundServer&);
};
constexpr SoundFault kSoundFaults[] = {
    {"Killed", [](SoundServer& server) { server.kill(); },
     [](SoundServer& server) { server.start(); }},
    {"Hung", [](SoundServer& server) { server.stop(); },
     [](SoundServer& server) { server.cont(); }},
};

// What a test runner lists the case under.
void PrintTo(const SoundFault& row, std::ostream* stream) {
  *stream << row.name;
}

class SoundFaultsTest : public testing::TestWithParam<std::tuple<SoundServerKind, SoundFault>> {
 protected:
  SoundServer& server() { return program.desk().sound(); }

  const SoundFault fault = std::get<1>(GetParam());
  ProgramDesk program{deskWith(Panel::None, std::get<0>(GetParam()))};
};

INSTANTIATE_TEST_SUITE_P(EachServer, SoundFaultsTest,
                         testing::Combine(testing::Values(SoundServerKind::PulseAudio,
                                                          SoundServerKind::PipeWire),
                                          testing::ValuesIn(kSoundFaults)),
                         [](const auto& row) {
                           return testing::PrintToString(std::get<0>(row.param)) +
                                  std::get<1>(row.param).name;
                         });

TEST_P(SoundFaultsTest, WithoutASoundServerAtTheStartTheSwitchesWork) {
  fault.begin(server());
  ASSERT_TRUE(program.start());
  for (const char* name : {"Speaker", "Presentation mode", "Notifications"})
    ASSERT_TRUE(program.clickSwitch(name));
  EXPECT_TRUE(program.switchedOn({"Speaker", "Presentation mode", "Notifications"}));
  ASSERT_TRUE(program.clickSwitch("Presentation mode"));
  EXPECT_TRUE(program.switchedOn({"Speaker", "Notifications"}));
  EXPECT_THAT(program.complaints("audio"), SizeIs(1));
  fault.end(server());
  ASSERT_TRUE(program.clickSwitch("Presentation mode"));
  EXPECT_TRUE(program.sinkMuted(true));
}

TEST_P(SoundFaultsTest, AfterAFailureInTheModeTheSwitchesMuteAndUnmuteAgain) {
  ASSERT_TRUE(program.start());
  ASSERT_TRUE(program.muteByTheMode());
  fault.begin(server());
  ASSERT_TRUE(program.clickSwitch("Presentation mode"));
  EXPECT_TRUE(program.switchedOn({"Speaker"}));
  EXPECT_THAT(program.complaints("audio"), SizeIs(1));
  fault.end(server());
  ASSERT_TRUE(program.clickSwitch("Presentation mode"));
  EXPECT_TRUE(program.sinkMuted(true));
  ASSERT_TRUE(program.clickSwitch("Presentation mode"));
  EXPECT_TRUE(program.sinkMuted(false));
  EXPECT_TRUE(program.program().running());
}

}  // namespace
