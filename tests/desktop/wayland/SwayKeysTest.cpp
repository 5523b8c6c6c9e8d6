// Shortcuts on sway: which key of which keyboard, and whose.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

#include "desktop/harness/WaylandDesk.h"

using harness::Compositor;
using harness::WaylandDesk;

namespace {

/// The real program with a shortcut, Control and Alt with a key, that starts the mode.
class SwayKeysTest : public testing::Test {
 protected:
  void startDesk(const std::string& configuration = {}) {
    desk = std::make_unique<WaylandDesk>(
        harness::WaylandOptions{.compositor = Compositor::Sway, .configuration = configuration});
  }
  void startProgram(const std::string& character) {
    desk->writeSettings(
        {"HideActiveApps"},
        R"("kuserdefault_ToggleAppFlag": [12, 13], "kuserdefault_ToggleAppShortcut": ")" +
            character + "\"");
    program = desk->startCalmdeck();
    // Its panel, which opens half a second after the start.
    ASSERT_TRUE(desk->until([&] {
      return desk->run({"swaymsg", "-t", "get_tree"}).output.find("org.calmdeck.Calmdeck") !=
             std::string::npos;
    }));
  }
  void press(const std::string& key) { desk->input().key("ctrl+alt+" + key); }
  [[nodiscard]] bool isHeard() {
    return program->waitForLine("^Pressed at", std::chrono::milliseconds(500)).has_value();
  }
  /// Pressed until it is, since sway tells a layout in its own time.
  [[nodiscard]] testing::AssertionResult fires(const std::string& key) {
    const auto heard = [&] {
      press(key);
      return isHeard();
    };
    if (desk->until(heard)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << key << " does not fire; " << program->errorOutput();
  }
  [[nodiscard]] testing::AssertionResult isSilent(const std::string& key) {
    press(key);
    if (!isHeard()) return testing::AssertionSuccess();
    return testing::AssertionFailure() << key << " fires";
  }

  std::unique_ptr<WaylandDesk> desk;
  std::unique_ptr<harness::Process> program;
};

// Keys are named by what they give without Shift.
TEST_F(SwayKeysTest, FollowTheCharacterOnTheKeyboardsOwnLayout) {
  startDesk();
  struct Row {
    const char* layouts;
    std::uint32_t inEffect;
    const char* character;
    const char* key;
  };
  constexpr Row kRows[] = {{"us", 0, "p", "p"},
                           {"de", 0, "z", "z"},
                           {"fr", 0, "1", "ampersand"},
                           {"us,fr", 1, "a", "a"},
                           {"ru", 0, "p", "Cyrillic_ze"}};
  for (const Row& row : kRows) {
    desk->useLayouts(row.layouts, row.inEffect);
    startProgram(row.character);
    EXPECT_TRUE(fires(row.key)) << row.layouts;
    program.reset();
  }
}

TEST_F(SwayKeysTest, FollowAChangeOfTheLayoutAndNoLockKey) {
  startDesk();
  startProgram("z");
  ASSERT_TRUE(fires("z"));
  for (const std::uint32_t inEffect : {1U, 0U}) {
    desk->useLayouts("us,de", inEffect);
    EXPECT_TRUE(fires("z")) << inEffect;
    EXPECT_TRUE(isSilent("y")) << inEffect;
  }
  for (const char* lock : {"Caps_Lock", "Num_Lock"}) {
    desk->input().key(lock);
    EXPECT_TRUE(fires("z")) << lock;
  }
}

TEST_F(SwayKeysTest, ThoseOfTheUsersConfigurationStayTheirs) {
  // As people write them: another name for a modifier, by a variable, in an included file, by the
  // number of the key.
  startDesk("set $keys Control+Mod1\ninclude keys");
  const std::filesystem::path sign = desk->home().home() / "pressed";
  for (const char* binding : {"bindsym $keys+P", "bindcode $keys+33"}) {
    std::filesystem::remove(sign);
    desk->home().writeConfig("sway/keys", std::string(binding) + " exec touch " + sign.string());
    ASSERT_TRUE(desk->run({"swaymsg", "reload"}).succeeded());
    startProgram("p");
    press("p");
    EXPECT_TRUE(desk->until([&] { return std::filesystem::exists(sign); })) << binding;
    EXPECT_THAT(program->output(), testing::Not(testing::HasSubstr("Pressed at"))) << binding;
    program.reset();
  }
}

TEST_F(SwayKeysTest, OnePressIsReportedOnceAlsoAfterAReload) {
  startDesk();
  startProgram("p");
  press("p");
  EXPECT_TRUE(program->waitForLine("^Pressed at"));
  ASSERT_TRUE(desk->run({"swaymsg", "reload"}).succeeded());
  const auto before = program->lines("Pressed at").size();
  EXPECT_TRUE(fires("p"));
  EXPECT_EQ(program->lines("Pressed at").size(), before + 1);
}

}  // namespace
