// The session bus itself as the peer that fails, which everything else on it then seems to do; and
// a daemon on it.

#include <gmock/gmock.h>

#include "desktop/harness/DesktopConfiguration.h"
#include "desktop/program/ProgramDesk.h"

using harness::DeskOptions;
using harness::DesktopIcons;
using harness::SoundServerKind;
using harness::WindowManager;
using testing::SizeIs;

namespace {

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
  EXPECT_THAT(program.complaints("process"), SizeIs(1));
  EXPECT_TRUE(desk.trayIcon());
  expectTheModeTurns(true);
  expectTheModeTurns(false);
  bus().thaw();
  expectTheModeTurns(true);
  EXPECT_THAT(program.complaints("process"), SizeIs(1));
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

}  // namespace
