#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>
#include <utility>

#include "desktop/program/ProgramDesk.h"

using harness::AccessibilityClient;
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

class PreferencesTest : public testing::Test {
 protected:
  explicit PreferencesTest(WindowManager windowManager = WindowManager::Openbox)
      : program({.windowManager = windowManager}) {}
  void SetUp() override {
    ASSERT_TRUE(program.start());
    ASSERT_TRUE(opens());
  }

  // --- The window ---

  /// By the keyboard, from the menu that the panel offers where there is no tray.
  [[nodiscard]] testing::AssertionResult opens() {
    if (const auto panel = window("Calmdeck")) desk.windows().activate(panel->id);
    if (!desk.until([&] { return isActive("Calmdeck"); })) return failure("the panel is active");
    input.key("F10");
    if (!desk.until([&] { return reader.shows("Preferences", "menu item"); }))
      return failure("a menu");
    for (const char* key : {"Down", "Return"}) input.key(key);
    if (!desk.until([&] { return isActive(kTitle); })) return failure("the window is active");
    return testing::AssertionSuccess();
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
  [[nodiscard]] testing::AssertionResult awaits(const std::string& name) const {
    return desk.until([&] { return reader.shows(name); }) ? testing::AssertionSuccess()
                                                          : failure(name);
  }
  [[nodiscard]] testing::AssertionResult clicks(const std::string& name) const {
    const auto found = reader.await(name);
    if (found) desk.input().click(found->area.centreX(), found->area.centreY());
    return found ? testing::AssertionSuccess() : failure("a control " + name);
  }
  /// Waits until the row of the mode records, or does not.
  [[nodiscard]] testing::AssertionResult records(bool wanted = true) const {
    const auto asWanted = [&] {
      const auto box = reader.find(kBox);
      return box && box->is("selected") == wanted;
    };
    return desk.until(asWanted) ? testing::AssertionSuccess() : failure("it records");
  }
  void recordFromScratch(const char* chord, const char* shown) {
    ASSERT_TRUE(clicks(kRecord));
    ASSERT_TRUE(records());
    input.key(chord);
    ASSERT_TRUE(awaits(shown));
    ASSERT_TRUE(records(false));
  }

  // --- What comes of it ---

  [[nodiscard]] std::string settings() const {
    return harness::textOf(desk.home().config() / "calmdeck" / "settings.json");
  }
  [[nodiscard]] bool stores(const std::string& text) const {
    return desk.until([&] { return settings().find(text) != std::string::npos; });
  }
  /// The mode's switch turns when the keys are pressed in another program's window.
  [[nodiscard]] testing::AssertionResult togglesTheModeWith(const char* chord) {
    if (other.id == XCB_NONE) other = desk.openWindow("Slides", {900, 20, 200, 100});
    desk.windows().activate(other.id);
    if (!desk.until([&] { return desk.windows().active() == other.id; })) return failure("other");
    const auto isOn = [&] {
      const auto master = reader.find(ProgramDesk::kMaster, "check box");
      return master && master->is("checked");
    };
    const bool before = isOn();
    input.key(chord);
    return desk.until([&] { return isOn() != before; }) ? testing::AssertionSuccess()
                                                        : failure("the mode is toggled");
  }
  [[nodiscard]] static testing::AssertionResult failure(const std::string& what) {
    return testing::AssertionFailure() << "not seen: " << what;
  }

  ProgramDesk program;
  harness::XDesk& desk = program.desk();
  const harness::XInput& input = desk.input();
  AccessibilityClient reader{desk};
  WindowInfo other;
};

TEST_F(PreferencesTest, AShortcutIsRecordedUsedClearedAndGone) {
  recordFromScratch("ctrl+alt+p", "Ctrl+Alt+P");
  EXPECT_TRUE(stores(R"("kuserdefault_ToggleAppShortcut": "p")"));
  EXPECT_TRUE(program.says("35"));
  EXPECT_TRUE(reader.shows(kClear));
  EXPECT_TRUE(togglesTheModeWith("ctrl+alt+p"));

  ASSERT_TRUE(clicks(kClear));
  EXPECT_TRUE(awaits(kNone));
  EXPECT_TRUE(desk.until([&] { return !reader.shows(kClear); }));
  EXPECT_THAT(settings(), Not(HasSubstr("kuserdefault_ToggleApp")));
  EXPECT_TRUE(records(false));
}

TEST_F(PreferencesTest, AShortcutPressedInTheWindowLeavesItTheKeysThatFollow) {
  recordFromScratch("ctrl+alt+p", "Ctrl+Alt+P");
  const auto lines = [&](std::string_view wanted) {
    std::istringstream text(program.program().output());
    int count = 0;
    for (std::string line; std::getline(text, line);) count += line.starts_with(wanted) ? 1 : 0;
    return count;
  };
  for (int round = 1; round <= 5; ++round) {
    ASSERT_TRUE(isActive(kTitle));
    input.key("ctrl+alt+p");
    ASSERT_TRUE(desk.until([&] { return lines("Pressed at") == round; }));
    input.key("ctrl+shift+j");
    ASSERT_TRUE(desk.until([&] { return lines("38") == round; })) << "after " << round;
  }
  EXPECT_EQ(lines("35"), 1) << "when it was recorded";
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
  ASSERT_TRUE(opens()) << "minimised";
  ASSERT_TRUE(isSent("_NET_WM_DESKTOP", {1, 2}));
  ASSERT_TRUE(opens()) << "on another workspace";
  EXPECT_EQ(desk.x().number(desk.x().root(), "_NET_CURRENT_DESKTOP"), 0U);
}

INSTANTIATE_TEST_SUITE_P(Each, SentAwayTest,
                         testing::Values(WindowManager::Openbox, WindowManager::Xfwm4,
                                         WindowManager::Icewm));

TEST_F(PreferencesTest, AWallpaperIsChosenInTheFileDialog) {
  std::filesystem::create_directories(desk.home().home() / "Pictures");
  const std::string chosen = desk.picture("Pictures/my beach.PNG", 0x204060);
  constexpr const char* kDialog = "Please select an image — Calmdeck";

  ASSERT_TRUE(clicks("Choose the wallpaper"));
  ASSERT_TRUE(desk.until([&] { return isActive(kDialog); }));
  input.key("Escape");
  ASSERT_TRUE(desk.until([&] { return !window(kDialog); }));
  EXPECT_TRUE(awaits("Please select a Wallpaper"));
  EXPECT_THAT(settings(), Not(HasSubstr("SelectedWallpaper")));

  ASSERT_TRUE(clicks("Choose the wallpaper"));
  ASSERT_TRUE(desk.until([&] { return isActive(kDialog); }));
  for (const char* key :
       {"m", "y", "space", "b", "e", "a", "c", "h", ".", "shift+p", "shift+n", "shift+g", "Return"})
    input.key(key);
  EXPECT_TRUE(stores(chosen));
  EXPECT_TRUE(awaits(chosen));
  EXPECT_TRUE(desk.until([&] { return isActive(kTitle); }));
}

}  // namespace
