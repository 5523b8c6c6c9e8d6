#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <map>

#include "desktop/program/ProgramDesk.h"

using harness::Button;
using harness::DeskOptions;
using harness::Panel;
using harness::ProcessEnd;
using harness::SoundServerKind;
using harness::WindowManager;
using namespace std::chrono_literals;

namespace {

class StatusMenuTest : public testing::TestWithParam<Panel> {
 protected:
  /// Windows on the screen: panels draw menus in windows that no window manager knows.
  std::set<std::uint32_t> windowsOnScreen() {
    std::set<std::uint32_t> windows;
    for (const harness::WindowInfo& window : program.desk().windows().all())
      if (window.viewable) windows.insert(window.id);
    return windows;
  }

  testing::AssertionResult openMenu() {
    const std::set<std::uint32_t> before = windowsOnScreen();
    if (auto clicked = program.clickIcon(Button::Right); !clicked) return clicked;
    const auto opened = [&] { return !std::ranges::includes(before, windowsOnScreen()); };
    if (!program.desk().until(opened)) return testing::AssertionFailure() << "no menu";
    [[maybe_unused]] const auto drawn =
        program.desk().screen().settled(program.desk().x().screenArea(), 200ms, harness::kPatience);
    return testing::AssertionSuccess();
  }

  ProgramDesk program{DeskOptions{.windowManager = WindowManager::Openbox,
                                  .panel = GetParam(),
                                  .sound = SoundServerKind::PulseAudio}};
};

std::string nameOf(const testing::TestParamInfo<Panel>& info) {
  const std::map<Panel, std::string> names{
      {Panel::XfcePanel, "XfcePanel"}, {Panel::Tint2, "Tint2"}, {Panel::LxqtPanel, "LxqtPanel"}};
  return names.at(info.param);
}

INSTANTIATE_TEST_SUITE_P(EachPanel, StatusMenuTest,
                         testing::Values(Panel::XfcePanel, Panel::Tint2, Panel::LxqtPanel), nameOf);

// The keyboard passes over an item that is disabled, so that the first one that Down reaches is
// Quit only if both above it are.
TEST_P(StatusMenuTest, QuitIsWhatCanBeChosenAndLeavesTheModesEffects) {
  ASSERT_TRUE(program.start());
  ASSERT_TRUE(program.muteByTheMode());
  ASSERT_TRUE(openMenu());
  ASSERT_TRUE(program.says("Right click!"));
  program.desk().input().key("Escape");
  ASSERT_TRUE(openMenu()) << "a second time";
  ASSERT_TRUE(program.says("Right click!"));
  for (const char* key : {"Down", "Return"}) program.desk().input().key(key);
  EXPECT_EQ(program.program().waitForExit(), (ProcessEnd{0, 0}));
  EXPECT_TRUE(program.sinkMuted(true));
  EXPECT_THAT(program.complaints(""), testing::IsEmpty());
}

}  // namespace
