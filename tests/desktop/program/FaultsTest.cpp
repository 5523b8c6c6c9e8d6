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

DeskOptions deskWith(Panel panel, SoundServerKind sound) {
  return {.windowManager = WindowManager::Openbox, .panel = panel, .sound = sound};
}

class PanelFaultsTest : public testing::TestWithParam<Panel> {
 protected:
  ProgramDesk program{deskWith(GetParam(), SoundServerKind::PulseAudio)};
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
  program.desk().panel().freezeGroup();
  ASSERT_TRUE(program.start());
  EXPECT_TRUE(program.muteByTheMode());
  ASSERT_TRUE(program.program().complains("does not answer"));
  EXPECT_THAT(program.complaints("tray"), SizeIs(1));
  program.desk().panel().thawGroup();
  ASSERT_TRUE(program.clickIcon());
  EXPECT_TRUE(program.says("Left click!"));
}

TEST_P(PanelFaultsTest, APanelThatComesLateShowsTheIconAndAfterItsDeathAgain) {
  harness::XDesk& desk = program.desk();
  const harness::TrayIconFinder finder(desk.screen(), desk.panelAreas());
  desk.stopPanel();
  ASSERT_TRUE(program.start());
  EXPECT_THAT(program.complaints("tray"), SizeIs(1));
  desk.startPanel(GetParam());
  const auto place = finder.find();
  ASSERT_TRUE(place);
  EXPECT_THAT(program.complaints("tray"), SizeIs(1));

  ASSERT_TRUE(program.muteByTheMode());
  const harness::Image on = desk.screen().settled(*place, kCalm);
  desk.panel().kill();
  desk.startPanel(GetParam());
  ASSERT_TRUE(finder.find());
  EXPECT_EQ(desk.screen().settled(*place, kCalm), on);
  desk.input().click(place->centreX(), place->centreY());
  EXPECT_TRUE(program.says("Left click!"));
}

TEST(TrayProtocolsTest, TheIconMovesFromEachToTheOther) {
  ProgramDesk program(deskWith(Panel::XfcePanel, SoundServerKind::PulseAudio));
  harness::XDesk& desk = program.desk();
  const harness::TrayIconFinder finder(desk.screen(), desk.panelAreas());
  desk.startPanel(Panel::Tint2);
  ASSERT_TRUE(program.start());
  EXPECT_TRUE(desk.trayIcon());
  desk.startPanel(Panel::XfcePanel);
  EXPECT_TRUE(finder.find());
  desk.startPanel(Panel::Tint2);
  ASSERT_TRUE(program.clickIcon());
  EXPECT_TRUE(program.says("Left click!"));
}

TEST(TrayProtocolsTest, WithoutASessionBusTheOldOneServes) {
  ProgramDesk program(DeskOptions{
      .windowManager = WindowManager::Openbox, .panel = Panel::Tint2, .sessionBus = false});
  ASSERT_TRUE(program.start());
  ASSERT_TRUE(program.openMenu());
  EXPECT_TRUE(program.quits());
}

// --- The session bus itself, and with it all that is on it ---

/// The shortcut turns everything on: nobody can be asked for the places of the switches while the
/// bus hangs, since screen readers ask over it.
class ModeFaults {
 protected:
  explicit ModeFaults(const DeskOptions& options) : program(options) {}

  void furnish(DesktopIcons icons) {
    desk.writeSettings(harness::kAllFeatures, harness::kControlAltP);
    harness::configureIcons(desk, icons, {{.colour = "#204060"}, {.colour = "#604020"}});
    desk.startIcons(icons);
  }
  /// Every monitor has its cover, or none has.
  [[nodiscard]] bool covered(bool covered) {
    return desk.until([&] { return desk.covers().size() == (covered ? 2U : 0U); });
  }
  void expectTheSpeakerTurns(bool muted) {
    desk.input().key("ctrl+alt+p");
    EXPECT_TRUE(program.sinkMuted(muted));
  }
  /// One call that waited as long as the bus itself does, 25 seconds, would outlast the patience.
  void expectTheModeTurns(bool on) {
    expectTheSpeakerTurns(on);
    EXPECT_TRUE(covered(on));
  }

  ProgramDesk program;
  harness::XDesk& desk = program.desk();
};

class SessionBusFaultsTest : public ModeFaults, public testing::Test {
 protected:
  SessionBusFaultsTest()
      : ModeFaults({.windowManager = WindowManager::Openbox,
                    .panel = Panel::Tint2,
                    .notifications = harness::NotificationDaemon::Dunst,
                    .sound = SoundServerKind::PulseAudio}) {}
  [[nodiscard]] harness::Process& bus() { return desk.bus().process(); }
};

TEST_F(SessionBusFaultsTest, ABusThatHangsBeforeTheStartIsLeftOut) {
  furnish(DesktopIcons::Pcmanfm);
  bus().freeze();
  ASSERT_TRUE(program.start());
  EXPECT_THAT(program.complaints("bus"), SizeIs(1));
  EXPECT_TRUE(desk.trayIcon());
  expectTheModeTurns(true);
  expectTheModeTurns(false);
  bus().thaw();
  expectTheModeTurns(true);
  EXPECT_THAT(program.complaints("bus"), SizeIs(1));
}

TEST_F(SessionBusFaultsTest, ABusThatHangsInTheModeHoldsNothingUp) {
  furnish(DesktopIcons::Xfdesktop);
  ASSERT_TRUE(program.start());
  bus().freeze();
  expectTheModeTurns(true);
  expectTheModeTurns(false);
  expectTheModeTurns(true);
  bus().thaw();
  expectTheModeTurns(false);
  // Where all this takes long enough, Do Not Disturb speaks of its wait.
  EXPECT_THAT(program.complaints(""), testing::Each(testing::HasSubstr("does not answer")));
}

TEST_F(SessionBusFaultsTest, WithoutTheBusTheOpenPanelGoesOn) {
  ASSERT_TRUE(program.start());
  const harness::AccessibilityClient reader(desk);
  const auto speaker = reader.await("Mute speaker");
  const auto master = reader.await("Presentation mode");
  ASSERT_TRUE(speaker && master);
  bus().kill();
  desk.input().click(speaker->area.centreX(), speaker->area.centreY());
  EXPECT_TRUE(desk.until([&] {
    return harness::textOf(desk.home().config() / "calmdeck/settings.json")
               .find(R"("kUserdefaultsToggleSpeakerOff": true)") != std::string::npos;
  })) << "the panel stands at "
      << program.popoverArea().x << ", the switch was at " << speaker->area.x;
  desk.input().click(master->area.centreX(), master->area.centreY());
  EXPECT_TRUE(program.sinkMuted(true));
  EXPECT_TRUE(program.program().running());
}

// --- A window manager that hangs while the mode is switched: what does without it may not wait for
// it ---

class WindowManagerFaultsTest : public ModeFaults, public testing::TestWithParam<WindowManager> {
 protected:
  WindowManagerFaultsTest()
      : ModeFaults({.windowManager = GetParam(),
                    .panel = Panel::Tint2,
                    .sound = SoundServerKind::PulseAudio}) {}
  void SetUp() override {
    furnish(DesktopIcons::Pcmanfm);
    ASSERT_TRUE(program.start());
    editor = desk.openWindow("Editor", {60, 60, 300, 200});
    desk.windows().activate(editor.id);
    ASSERT_TRUE(desk.until([&] { return desk.windows().active() == editor.id; }));
    ASSERT_TRUE(program.closes());
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
  desk.windowManager().freezeGroup();
  expectTheSpeakerTurns(true);
  expectTheSpeakerTurns(false);
  expectTheSpeakerTurns(true);
  // Until then it is also the window manager that has not put the covers up.
  desk.windowManager().thawGroup();
  EXPECT_TRUE(hidden(true));
  EXPECT_TRUE(covered(true));

  desk.windowManager().freezeGroup();
  expectTheSpeakerTurns(false);
  ASSERT_TRUE(program.program().complains("window manager does not answer"));
  desk.windowManager().thawGroup();
  EXPECT_TRUE(hidden(false));
  EXPECT_TRUE(covered(false));
}

}  // namespace
