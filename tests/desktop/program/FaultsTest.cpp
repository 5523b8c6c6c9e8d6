#include <gmock/gmock.h>

#include <chrono>

#include "desktop/harness/DesktopConfiguration.h"
#include "desktop/program/ProgramDesk.h"

using harness::DeskOptions;
using harness::DesktopIcons;
using harness::Panel;
using harness::SoundServerKind;
using harness::WindowManager;
using testing::SizeIs;

namespace {

constexpr std::chrono::milliseconds kCalm{200};

DeskOptions deskWith(Panel panel) {
  return {.windowManager = WindowManager::Openbox,
          .panel = panel,
          .sound = SoundServerKind::PulseAudio};
}

class PanelFaultsTest : public testing::TestWithParam<Panel>, public ProgramDesk {
 protected:
  PanelFaultsTest() : ProgramDesk(deskWith(GetParam())) {}
};

INSTANTIATE_TEST_SUITE_P(EachPanel, PanelFaultsTest,
                         testing::Values(Panel::XfcePanel, Panel::Tint2, Panel::LxqtPanel,
                                         Panel::MatePanel),
                         testing::PrintToStringParamName());

/// MATE's tray is a program of its own, which does not hang with the panel.
class HungPanelTest : public PanelFaultsTest {};

INSTANTIATE_TEST_SUITE_P(EachPanel, HungPanelTest,
                         testing::Values(Panel::XfcePanel, Panel::Tint2, Panel::LxqtPanel),
                         testing::PrintToStringParamName());

TEST_P(HungPanelTest, APanelThatHangsBeforeTheStartHoldsNothingUp) {
  desk.panel().freeze();
  ASSERT_TRUE(start());
  EXPECT_TRUE(muteByTheMode());
  ASSERT_TRUE(program->complains("does not answer"));
  EXPECT_THAT(complaints("tray"), SizeIs(1));
  desk.panel().thaw();
  ASSERT_TRUE(clickIcon());
  EXPECT_TRUE(says("Left click!"));
}

TEST_P(PanelFaultsTest, APanelThatComesLateShowsTheIconAndAfterItsDeathAgain) {
  const harness::TrayIconFinder finder(desk.screen(), desk.panelAreas());
  desk.stopPanel();
  ASSERT_TRUE(start());
  EXPECT_THAT(complaints("tray"), SizeIs(1));
  desk.startPanel(GetParam());
  const auto place = finder.find();
  ASSERT_TRUE(place);
  EXPECT_THAT(complaints("tray"), SizeIs(1));

  ASSERT_TRUE(muteByTheMode());
  const harness::Image on = desk.screen().settled(*place, kCalm);
  desk.panel().kill();
  desk.startPanel(GetParam());
  ASSERT_TRUE(finder.find());
  EXPECT_EQ(desk.screen().settled(*place, kCalm), on);
  desk.input().click(place->centreX(), place->centreY());
  EXPECT_TRUE(says("Left click!"));
}

TEST(TrayProtocolsTest, TheIconMovesFromEachToTheOther) {
  ProgramDesk on(deskWith(Panel::XfcePanel));
  const harness::TrayIconFinder finder(on.desk.screen(), on.desk.panelAreas());
  on.desk.startPanel(Panel::Tint2);
  ASSERT_TRUE(on.start());
  EXPECT_TRUE(on.desk.trayIcon());
  on.desk.startPanel(Panel::XfcePanel);
  EXPECT_TRUE(finder.find());
  on.desk.startPanel(Panel::Tint2);
  ASSERT_TRUE(on.clickIcon());
  EXPECT_TRUE(on.says("Left click!"));
}

TEST(TrayProtocolsTest, WithoutASessionBusTheOldOneServes) {
  ProgramDesk on(
      {.windowManager = WindowManager::Openbox, .panel = Panel::Tint2, .sessionBus = false});
  ASSERT_TRUE(on.start());
  ASSERT_TRUE(on.openMenu());
  EXPECT_TRUE(on.quits());
}

// --- The session bus itself, and with it all that is on it ---

/// The shortcut turns everything on: nobody can be asked for the places of the switches while the
/// bus hangs, since screen readers ask over it.
class ModeFaults : public ProgramDesk {
 protected:
  explicit ModeFaults(WindowManager windowManager)
      : ProgramDesk({.windowManager = windowManager,
                     .panel = Panel::Tint2,
                     .notifications = harness::NotificationDaemon::Dunst,
                     .sound = SoundServerKind::PulseAudio}) {}

  void furnish(DesktopIcons icons) {
    desk.writeSettings(harness::kAllFeatures, harness::kControlAltP);
    harness::configureIcons(desk, icons, {{.colour = "#204060"}, {.colour = "#604020"}});
    desk.startIcons(icons);
  }
  void expectTheSpeakerTurns(bool muted) {
    desk.input().key("ctrl+alt+p");
    EXPECT_TRUE(sinkMuted(muted));
  }
  /// One call that waited as long as the bus itself does, 25 seconds, would outlast the patience.
  void expectTheModeTurns(bool on) {
    expectTheSpeakerTurns(on);
    EXPECT_TRUE(covered(on));
  }
};

class SessionBusFaultsTest : public ModeFaults, public testing::Test {
 protected:
  SessionBusFaultsTest() : ModeFaults(WindowManager::Openbox) {}
  [[nodiscard]] harness::Process& bus() { return desk.bus().process(); }
};

TEST_F(SessionBusFaultsTest, ABusThatHangsBeforeTheStartIsLeftOut) {
  furnish(DesktopIcons::Pcmanfm);
  bus().freeze();
  ASSERT_TRUE(start());
  EXPECT_THAT(complaints("bus"), SizeIs(1));
  EXPECT_TRUE(desk.trayIcon());
  expectTheModeTurns(true);
  expectTheModeTurns(false);
  bus().thaw();
  expectTheModeTurns(true);
  EXPECT_THAT(complaints("bus"), SizeIs(1));
}

TEST_F(SessionBusFaultsTest, ABusThatHangsInTheModeHoldsNothingUp) {
  furnish(DesktopIcons::Xfdesktop);
  ASSERT_TRUE(start());
  bus().freeze();
  expectTheModeTurns(true);
  expectTheModeTurns(false);
  expectTheModeTurns(true);
  bus().thaw();
  expectTheModeTurns(false);
  // Where all this takes long enough, Do Not Disturb speaks of its wait.
  EXPECT_THAT(complaints(""), testing::Each(testing::HasSubstr("does not answer")));
}

TEST_F(SessionBusFaultsTest, WithoutTheBusTheOpenPanelGoesOn) {
  ASSERT_TRUE(start());
  const auto speaker = reader.await(kSpeaker);
  const auto master = reader.await(kMaster);
  ASSERT_TRUE(speaker && master);
  bus().kill();
  desk.input().click(speaker->area.centreX(), speaker->area.centreY());
  EXPECT_TRUE(desk.until([&] {
    return desk.settings().find(R"("kUserdefaultsToggleSpeakerOff": true)") != std::string::npos;
  })) << "the panel stands at "
      << popoverArea().x << ", the switch was at " << speaker->area.x;
  desk.input().click(master->area.centreX(), master->area.centreY());
  EXPECT_TRUE(sinkMuted(true));
  EXPECT_TRUE(program->running());
}

// --- A window manager that hangs while the mode is switched: what does without it may not wait for
// it ---

class WindowManagerFaultsTest : public ModeFaults, public testing::TestWithParam<WindowManager> {
 protected:
  WindowManagerFaultsTest() : ModeFaults(GetParam()) {}
  void SetUp() override {
    furnish(DesktopIcons::Pcmanfm);
    ASSERT_TRUE(start());
    editor = desk.openWindow("Editor", {60, 60, 300, 200});
    ASSERT_TRUE(desk.activate(editor.id));
    ASSERT_TRUE(closes());
  }
  [[nodiscard]] bool hidden(bool hidden) {
    return desk.until([&] { return desk.windows().info(editor.id)->has("HIDDEN") == hidden; });
  }

  harness::WindowInfo editor;
};

INSTANTIATE_TEST_SUITE_P(Each, WindowManagerFaultsTest,
                         testing::Values(WindowManager::Openbox, WindowManager::Xfwm4,
                                         WindowManager::Marco, WindowManager::Icewm),
                         testing::PrintToStringParamName());

TEST_P(WindowManagerFaultsTest, OneThatHangsHoldsUpOnlyWindowsAndTheLastWishHolds) {
  desk.windowManager().freeze();
  expectTheSpeakerTurns(true);
  expectTheSpeakerTurns(false);
  expectTheSpeakerTurns(true);
  // Until then it is also the window manager that has not put the covers up.
  desk.windowManager().thaw();
  EXPECT_TRUE(hidden(true));
  EXPECT_TRUE(covered(true));

  desk.windowManager().freeze();
  expectTheSpeakerTurns(false);
  ASSERT_TRUE(program->complains("window manager does not answer"));
  desk.windowManager().thaw();
  EXPECT_TRUE(hidden(false));
  EXPECT_TRUE(covered(false));
}

}  // namespace
