#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>

#include "desktop/program/ProgramDesk.h"

using harness::WindowInfo;
using harness::WindowManager;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr const char* kTitle = "Preferences — Calmdeck";
constexpr const char* kBox = "Shortcut for presentation mode";
constexpr const char* kRecord = "Record the shortcut for presentation mode";
constexpr const char* kClear = "Clear the shortcut for presentation mode";
constexpr const char* kNone = "Record Shortcut";

class PreferencesTest : public testing::Test, public ProgramDesk {
 protected:
  explicit PreferencesTest(WindowManager windowManager = WindowManager::Openbox)
      : ProgramDesk({.windowManager = windowManager}) {}
  void SetUp() override { ASSERT_TRUE(start() && opensPreferences()); }

  // --- The window ---

  /// By the keyboard, from the menu that the panel offers where there is no tray.
  [[nodiscard]] bool opensPreferences() {
    const auto panel = window("Calmdeck");
    if (!panel || !desk.activate(panel->id)) return false;
    input.key("F10");
    if (!desk.until([&] { return reader.shows("Preferences", "menu item"); })) return false;
    for (const char* key : {"Down", "Return"}) input.key(key);
    return becomesActive(kTitle);
  }
  [[nodiscard]] std::optional<WindowInfo> window(const std::string& name) const {
    return desk.windows().findViewable([&](const WindowInfo& found) {
      return found.managed && found.name == name && harness::ofClass("calmdeck")(found);
    });
  }
  [[nodiscard]] bool isActive(const std::string& name) const {
    const auto found = window(name);
    return found && desk.windows().active() == found->id;
  }
  [[nodiscard]] bool becomesActive(const std::string& name) const {
    return desk.until([&] { return isActive(name); });
  }
  [[nodiscard]] bool awaits(const std::string& name) const {
    return desk.until([&] { return reader.shows(name); });
  }
  /// Waits until the row of the mode records, or does not.
  [[nodiscard]] bool records(bool wanted = true) const {
    return desk.until([&] {
      const auto box = reader.find(kBox);
      return box && box->is("selected") == wanted;
    });
  }
  void recordFromScratch(const char* chord, const char* shown) {
    ASSERT_TRUE(click(kRecord));
    ASSERT_TRUE(records());
    input.key(chord);
    ASSERT_TRUE(awaits(shown));
    ASSERT_TRUE(records(false));
  }

  // --- What comes of it ---

  [[nodiscard]] bool stores(const std::string& text) const {
    return desk.until([&] { return desk.settings().find(text) != std::string::npos; });
  }

  const harness::XInput& input = desk.input();
};

TEST_F(PreferencesTest, AShortcutIsRecordedUsedClearedAndGone) {
  recordFromScratch("ctrl+alt+p", "Ctrl+Alt+P");
  EXPECT_TRUE(stores(R"("kuserdefault_ToggleAppShortcut": "p")"));
  EXPECT_TRUE(says("35"));
  EXPECT_TRUE(reader.shows(kClear));
  const WindowInfo other = desk.openWindow("Slides", {900, 20, 200, 100});
  ASSERT_TRUE(desk.activate(other.id));
  input.key("ctrl+alt+p");
  EXPECT_TRUE(desk.until([&] { return reader.shows(kMaster, "check box", "checked"); }));

  ASSERT_TRUE(click(kClear));
  EXPECT_TRUE(awaits(kNone));
  EXPECT_TRUE(desk.until([&] { return !reader.shows(kClear); }));
  EXPECT_THAT(desk.settings(), Not(HasSubstr("kuserdefault_ToggleApp")));
  EXPECT_TRUE(records(false));
}

TEST_F(PreferencesTest, AShortcutPressedInTheWindowLeavesItTheKeysThatFollow) {
  recordFromScratch("ctrl+alt+p", "Ctrl+Alt+P");
  for (int round = 0; round < 5; ++round) {
    ASSERT_TRUE(isActive(kTitle));
    input.key("ctrl+alt+p");
    ASSERT_TRUE(says("Pressed at .*"));
    input.key("ctrl+shift+j");
    ASSERT_TRUE(says("38")) << round;
  }
  EXPECT_EQ(std::ranges::count(program->lines("35"), "35"), 1) << "when it was recorded";
}

class SentAwayTest : public PreferencesTest, public testing::WithParamInterface<WindowManager> {
 protected:
  SentAwayTest() : PreferencesTest(GetParam()) {}
  /// Returns when the window is off the screen.
  [[nodiscard]] bool isSent(const char* message, const std::vector<std::uint32_t>& data) {
    // A program that answers has asked for all that it wanted of the window manager.
    if (!reader.shows(kNone)) return false;
    desk.x().askWindowManager(window(kTitle).value().id, message, data);
    return desk.until([&] { return !window(kTitle); });
  }
};

TEST_P(SentAwayTest, PreferencesComeToTheUserFromWhereverTheyAre) {
  constexpr std::uint32_t kIconic = 3;
  ASSERT_TRUE(isSent("WM_CHANGE_STATE", {kIconic}));
  ASSERT_TRUE(opensPreferences()) << "minimised";
  ASSERT_TRUE(isSent("_NET_WM_DESKTOP", {1, 2}));
  ASSERT_TRUE(opensPreferences()) << "on another workspace";
  EXPECT_EQ(desk.x().number(desk.x().root(), "_NET_CURRENT_DESKTOP"), 0U);
}

INSTANTIATE_TEST_SUITE_P(Each, SentAwayTest,
                         testing::Values(WindowManager::Openbox, WindowManager::Xfwm4,
                                         WindowManager::Icewm));

TEST_F(PreferencesTest, AWallpaperIsChosenInTheFileDialog) {
  const std::filesystem::path pictures = desk.home().home() / "Pictures";
  std::filesystem::create_directories(pictures);
  std::ofstream(pictures / "a.txt") << "no picture";
  const std::string chosen = desk.picture("Pictures/my beach.PNG", 0x204060);
  const auto choose = [&](const std::vector<const char*>& keys) {
    constexpr const char* kDialog = "Please select an image — Calmdeck";
    ASSERT_TRUE(click("Choose the wallpaper"));
    ASSERT_TRUE(becomesActive(kDialog));
    for (const char* key : keys) input.key(key);
    ASSERT_TRUE(desk.until([&] { return !window(kDialog); }));
  };
  ASSERT_NO_FATAL_FAILURE(choose({"Escape"}));
  ASSERT_NO_FATAL_FAILURE(choose({"a", ".", "t", "x", "t", "Return"}));
  EXPECT_TRUE(awaits("Please select a Wallpaper"));
  EXPECT_THAT(desk.settings(), Not(HasSubstr("SelectedWallpaper")));
  ASSERT_NO_FATAL_FAILURE(choose({"m", "y", "space", "b", "e", "a", "c", "h", ".", "shift+p",
                                  "shift+n", "shift+g", "Return"}));
  EXPECT_TRUE(stores(chosen));
  EXPECT_TRUE(awaits(chosen));
  EXPECT_TRUE(becomesActive(kTitle));
}

}  // namespace
