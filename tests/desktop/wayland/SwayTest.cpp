#include <gtest/gtest.h>

#include "desktop/harness/WaylandDesk.h"

using harness::Compositor;
using harness::ForeignWindow;
using harness::WaylandDesk;

namespace {

constexpr std::uint32_t kRed = 0xd02010;
constexpr std::uint32_t kBlue = 0x1020e0;
constexpr std::uint32_t kWhite = 0xf0f8ff;

/// The real program with a shortcut, Control+Alt+p, that starts the mode, and hiding switched on.
class SwayTest : public testing::Test {
 protected:
  void start(const std::string& configuration = {}) {
    desk = std::make_unique<WaylandDesk>(
        harness::WaylandOptions{.compositor = Compositor::Sway, .configuration = configuration});
    desk->home().writeConfig("calmdeck/settings.json", R"({
      "kUserdefaultsToggleHideActiveApps": true, "kUserdeaultsLaunchAtLogin": false,
      "kuserdefault_ToggleAppShortcut": "p", "kuserdefault_ToggleAppFlag": [12, 13]})");
  }
  void startProgram() {
    program = desk->startCalmdeck();
    ASSERT_TRUE(desk->until([&] { return desk->bus().hasOwner("org.calmdeck.Calmdeck"); }));
    // Its panel, which opens half a second after the start.
    ASSERT_TRUE(
        desk->until([&] { return tree().find("org.calmdeck.Calmdeck") != std::string::npos; }));
  }
  [[nodiscard]] std::string tree() { return desk->run({"swaymsg", "-t", "get_tree"}).output; }
  void sway(const std::string& command) {
    EXPECT_TRUE(desk->run({"swaymsg", command}).succeeded()) << command;
  }
  bool isSeen(std::uint32_t colour) { return desk->areaOf(colour).has_value(); }
  void press() { desk->input().key("ctrl+alt+p"); }

  std::unique_ptr<WaylandDesk> desk;
  std::unique_ptr<harness::Process> program;
};

TEST_F(SwayTest, EachMonitorTurnsToAnEmptyWorkspaceAndExactlyBack) {
  start();
  ForeignWindow& red = desk->openWindow("red", kRed);
  ForeignWindow& blue = desk->openWindow("blue", kBlue);
  sway("focus output HEADLESS-2");
  desk->openWindow("white", kWhite);
  sway("[app_id=\"red\"] floating enable, sticky enable, move position 40 30, focus");
  startProgram();
  desk->input().moveTo(WaylandDesk::kOutputWidth - 50, WaylandDesk::kOutputHeight - 50);
  sway("[app_id=\"red\"] focus");
  const auto places = [&] {
    return std::vector{desk->areaOf(kRed), desk->areaOf(kBlue), desk->areaOf(kWhite)};
  };
  const auto before = places();

  press();
  EXPECT_TRUE(desk->until([&] { return !isSeen(kRed) && !isSeen(kBlue) && !isSeen(kWhite); }));
  press();
  EXPECT_TRUE(desk->until([&] { return places() == before; }));
  // The pointer has not been taken along to another monitor, nor to what has the focus.
  desk->input().press(harness::Button::Left);
  desk->input().release(harness::Button::Left);
  EXPECT_TRUE(blue.process->waitForLine("^press$"));
  // It has come along everywhere again.
  sway("workspace 9");
  EXPECT_TRUE(desk->until([&] { return isSeen(kRed) && !isSeen(kBlue); }));
  EXPECT_TRUE(red.process->running());
}

}  // namespace
