#include <gmock/gmock.h>

#include <array>
#include <ostream>
#include <tuple>

#include "desktop/harness/DesktopConfiguration.h"
#include "desktop/program/ProgramDesk.h"

using harness::DeskOptions;
using harness::DesktopIcons;
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
  ASSERT_TRUE(program.program().waitForLine("does not answer", harness::kPatience, Stream::Error));
  EXPECT_THAT(program.complaints("tray"), SizeIs(1));
  program.desk().panel().thawGroup();
  ASSERT_TRUE(program.clickIcon());
  EXPECT_TRUE(program.says("Left click!"));
}

TEST_P(PanelFaultsTest, APanelThatComesLateShowsTheIcon) {
  harness::XDesk& desk = program.desk();
  const harness::TrayIconFinder finder(desk.screen(), desk.panelAreas());
  desk.stopPanel();
  ASSERT_TRUE(program.start());
  EXPECT_THAT(program.complaints("tray"), SizeIs(1));
  desk.startPanel(GetParam());
  EXPECT_TRUE(finder.find());
  EXPECT_THAT(program.complaints("tray"), SizeIs(1));
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
  for (const char* key : {"Up", "Return"}) program.desk().input().key(key);
  EXPECT_EQ(program.program().waitForExit(), (harness::ProcessEnd{0, 0}));
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

// --- The session bus itself as the peer that fails, which everything else on it then seems to do;
// and ---

constexpr const char* kToggle = "ctrl+alt+p";

/// The shortcut turns everything on: nobody can be asked for the places of the switches while the
/// bus hangs, since screen readers ask over it.
class SessionBusFaultsTest : public testing::Test {
 protected:
  void furnish(DesktopIcons icons) {
    desk.home().writeConfig("calmdeck/settings.json",
                            R"({"kUserdefaultsToggleSpeakerOff": true,
                                "kUserdefaultsToggleDesktopIcons": true,
                                "kUserdefaultsToggleDnd": true,
                                "kUserdefaultsToggleHideActiveApps": true,
                                "kUserdefaultsToggleWallpaper": true,
                                "kuserdefault_ToggleAppShortcut": "p",
                                "kuserdefault_ToggleAppFlag": [12, 13]})");
    harness::configureIcons(desk, icons, {{.colour = "#204060"}, {.colour = "#604020"}});
    desk.startIcons(icons);
  }
  [[nodiscard]] bool covered(bool covered) {
    return desk.until([&] {
      return desk.windows().findViewable(harness::ofClass("calmdeck-cover")).has_value() == covered;
    });
  }
  /// One call that waited as long as the bus itself does, 25 seconds, would outlast the patience.
  void expectTheModeTurns(bool on) {
    desk.input().key(kToggle);
    EXPECT_TRUE(covered(on));
    EXPECT_TRUE(program.sinkMuted(on));
  }
  [[nodiscard]] harness::Process& bus() { return desk.bus().process(); }

  ProgramDesk program{DeskOptions{.windowManager = WindowManager::Openbox,
                                  .panel = harness::Panel::Tint2,
                                  .notifications = harness::NotificationDaemon::Dunst,
                                  .sound = SoundServerKind::PulseAudio}};
  harness::XDesk& desk = program.desk();
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

TEST_F(SessionBusFaultsTest, TwoPressesWhileADaemonHangsEndWithNothingCoveredOrHidden) {
  furnish(DesktopIcons::Pcmanfm);
  ASSERT_TRUE(program.start());
  const auto editor = desk.openWindow("Editor", {60, 60, 300, 200});
  desk.windows().activate(editor.id);
  ASSERT_TRUE(program.closes());
  const auto hidden = [&](bool wanted) {
    return desk.until([&] { return desk.windows().info(editor.id)->has("HIDDEN") == wanted; });
  };
  desk.notifications().freezeGroup();
  for (int press = 0; press < 2; ++press) desk.input().key(kToggle);
  EXPECT_TRUE(hidden(true));
  EXPECT_TRUE(hidden(false));
  // The click comes after everything that the presses have set going.
  ASSERT_TRUE(program.clickIcon());
  ASSERT_TRUE(program.opens());
  EXPECT_TRUE(covered(false));
  EXPECT_TRUE(hidden(false));
  desk.notifications().thawGroup();
}

TEST_F(SessionBusFaultsTest, WithoutTheBusTheOpenPanelGoesOn) {
  ASSERT_TRUE(program.start());
  const harness::AccessibilityClient reader(desk);
  const auto speaker = reader.await("Speaker");
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

struct ManagedDesktop {
  const char* name;
  WindowManager windowManager;
  DesktopIcons icons;
};
constexpr std::array kDesktops{
    ManagedDesktop{"Openbox", WindowManager::Openbox, DesktopIcons::Pcmanfm},
    ManagedDesktop{"Xfwm4", WindowManager::Xfwm4, DesktopIcons::Xfdesktop},
    ManagedDesktop{"Marco", WindowManager::Marco, DesktopIcons::Caja},
    ManagedDesktop{"Icewm", WindowManager::Icewm, DesktopIcons::Pcmanfm},
};

void PrintTo(const ManagedDesktop& row, std::ostream* stream) {
  *stream << row.name;
}

class WindowManagerFaultsTest : public testing::TestWithParam<ManagedDesktop> {
 protected:
  void SetUp() override {
    desk.home().writeConfig("calmdeck/settings.json",
                            R"({"kUserdefaultsToggleSpeakerOff": true,
                                "kUserdefaultsToggleDesktopIcons": true,
                                "kUserdefaultsToggleHideActiveApps": true,
                                "kuserdefault_ToggleAppShortcut": "p",
                                "kuserdefault_ToggleAppFlag": [12, 13]})");
    harness::configureIcons(desk, GetParam().icons, {{.colour = "#204060"}, {.colour = "#604020"}});
    desk.startIcons(GetParam().icons);
    ASSERT_TRUE(program.start());
    editor = desk.openWindow("Editor", {60, 60, 300, 200});
    desk.windows().activate(editor.id);
    ASSERT_TRUE(desk.until([&] { return desk.windows().active() == editor.id; }));
    ASSERT_TRUE(program.closes());
  }
  /// Every monitor has its cover, or none has.
  [[nodiscard]] bool covered(bool covered) {
    return desk.until([&] {
      const auto all = desk.windows().all();
      const auto covers = std::ranges::count_if(all, [](const harness::WindowInfo& window) {
        return window.className == "calmdeck-cover" && window.viewable;
      });
      return covered ? covers == 2 : covers == 0;
    });
  }
  [[nodiscard]] bool hidden(bool hidden) {
    return desk.until([&] { return desk.windows().info(editor.id)->has("HIDDEN") == hidden; });
  }
  void expectTheSpeakerTurns(bool muted) {
    desk.input().key(kToggle);
    EXPECT_TRUE(program.sinkMuted(muted));
  }

  ProgramDesk program{{.windowManager = GetParam().windowManager,
                       .panel = harness::Panel::Tint2,
                       .sound = harness::SoundServerKind::PulseAudio}};
  harness::XDesk& desk = program.desk();
  harness::WindowInfo editor;
};

INSTANTIATE_TEST_SUITE_P(On, WindowManagerFaultsTest, testing::ValuesIn(kDesktops),
                         [](const auto& row) { return row.param.name; });

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
  ASSERT_TRUE(program.program().waitForLine("window manager does not answer", harness::kPatience,
                                            harness::Stream::Error));
  desk.windowManager().thawGroup();
  EXPECT_TRUE(hidden(false));
  EXPECT_TRUE(covered(false));
}

}  // namespace
