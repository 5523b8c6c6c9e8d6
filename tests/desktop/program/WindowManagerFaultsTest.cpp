// A window manager that hangs while the mode is switched: what does without it may not wait for it.

#include <gmock/gmock.h>

#include <array>

#include "desktop/harness/DesktopConfiguration.h"
#include "desktop/program/ProgramDesk.h"

using harness::DesktopIcons;
using harness::WindowManager;

namespace {

constexpr const char* kToggle = "ctrl+alt+p";

struct ManagedDesktop {
  const char* name;
  WindowManager windowManager;
  DesktopIcons icons;
};
constexpr std::array kDesktops{
    ManagedDesktop{"Openbox", WindowManager::Openbox, DesktopIcons::Pcmanfm},
    ManagedDesktop{"Xfwm4", WindowManager::Xfwm4, DesktopIcons::Xfdesktop},
    ManagedDesktop{"Marco", WindowManager::Marco, DesktopIcons::Caja},
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
