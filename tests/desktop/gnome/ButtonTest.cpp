#include <gmock/gmock.h>

#include "desktop/gnome/GnomeDesk.h"

using gnome_test::GnomeDesk;
using harness::Button;

namespace {

/// Two numbers in one.
constexpr int kFactor = 10000;
constexpr const char* kCentreOfButton =
    "const {calmdeck} = Main.panel.statusArea;"
    "const [x, y] = calmdeck.get_transformed_position();"
    "const centre = [x + calmdeck.width / 2, y + calmdeck.height / 2].map(Math.round);"
    "Number(centre[0] * 10000 + centre[1])";

/// Where windows have shown when they were painted for the first time: their right edge, and their
/// upper one below the bar.
constexpr const char* kFollowFirstFrames =
    "global.calmdeckTestPlaces = [];"
    "global.display.connect('window-created', (_display, window) => {"
    "  window.get_compositor_private().connect('first-frame', () => {"
    "    const {x, y, width} = window.get_frame_rect();"
    "    global.calmdeckTestPlaces.push(`${x + width},${y - Main.panel.height}`);"
    "  });"
    "}); 0";
constexpr const char* kFirstFrames = "global.calmdeckTestPlaces.join(' ')";
constexpr const char* kAtTheButton = "\"996,4\"";

/// Extensions come two seconds after they were asked for.
constexpr const char* kBeBusy =
    "const {GLib} = imports.gi;"
    "const manager = Main.extensionManager;"
    "const enable = manager.enableExtension;"
    "manager.enableExtension = uuid => {"
    "  GLib.timeout_add(GLib.PRIORITY_DEFAULT, 2000, () => {"
    "    enable.call(manager, uuid);"
    "    return GLib.SOURCE_REMOVE;"
    "  });"
    "  return true;"
    "}; 0";

class GnomeButtonTest : public testing::Test {
 protected:
  GnomeButtonTest() { desk.launch({"DesktopIcons"}); }

  // Made once the shell has heard of the program.
  void press(Button button = Button::Left) {
    std::string place;
    ASSERT_TRUE(desk.until([&] { return !(place = desk.evaluate(kCentreOfButton)).empty(); }));
    const int number = std::stoi(place);
    desk.input().click(number / kFactor, number % kFactor, button);
  }
  [[nodiscard]] bool isOpen() {
    return desk.until([&] { return desk.windows().find("Calmdeck*") != std::string::npos; });
  }
  [[nodiscard]] bool isClosed() {
    return desk.until([&] { return desk.windows().find("Calmdeck") == std::string::npos; });
  }

  GnomeDesk desk{{.monitors = 1}};
};

TEST_F(GnomeButtonTest, OpensThePanelBelowItFromItsFirstFrameOn) {
  (void)desk.evaluate(kFollowFirstFrames);
  press();
  ASSERT_TRUE(isOpen());
  EXPECT_EQ(desk.evaluate("global.display.list_all_windows()[0].is_above()"), "true");
  EXPECT_EQ(desk.evaluate(kFirstFrames), kAtTheButton);
}

TEST(GnomeBusyTest, ThePanelWaitsForItsButton) {
  GnomeDesk desk({.monitors = 1});
  (void)desk.evaluate(kFollowFirstFrames);
  (void)desk.evaluate(kBeBusy);
  desk.launch({});
  EXPECT_EQ(desk.evaluate(kFirstFrames), kAtTheButton);
}

TEST_F(GnomeButtonTest, ClosesThePanelAndSoDoPressesElsewhere) {
  press();
  ASSERT_TRUE(isOpen());
  press();
  EXPECT_TRUE(isClosed());
  // The wallpaper, which takes the keyboard from nobody; a cover; a window.
  press();
  ASSERT_TRUE(isOpen());
  desk.input().click(300, 400);
  EXPECT_TRUE(isClosed());
  desk.toggleMode();
  press();
  ASSERT_TRUE(isOpen());
  desk.input().click(300, 400);
  EXPECT_TRUE(isClosed());
}

TEST_F(GnomeButtonTest, ShowsTheMenuAndGoesWithTheProgram) {
  press(Button::Right);
  const std::string titles =
      "Main.panel.statusArea.calmdeck.menu._getMenuItems().map(item => item.label.text).join()";
  EXPECT_TRUE(desk.until([&] {
    return desk.evaluate(titles) == "\"Preferences,Check for Updates,Quit\"";
  })) << desk.evaluate(titles);
  // With the keyboard: what is chosen is what gets it.
  desk.input().key("Down");
  desk.input().key("Return");
  EXPECT_TRUE(desk.until([&] {
    return desk.windows().find("Preferences — Calmdeck*") != std::string::npos;
  })) << desk.windows();
  desk.program().kill();
  EXPECT_TRUE(desk.until([&] { return !desk.hasButton(); }));
}

}  // namespace
