// Shortcuts on sway: which key of which keyboard, and whose.

#include <gmock/gmock.h>

#include <filesystem>

#include "desktop/wayland/ModeDesk.h"

namespace {

/// The real program with a shortcut, Control and Alt with a key, that starts the mode.
class SwayKeysTest : public testing::Test, public wayland_test::ModeDesk {
 protected:
  explicit SwayKeysTest(const std::string& configuration = {})
      : ModeDesk({.compositor = harness::Compositor::Sway, .configuration = configuration}) {}

  void start(const std::string& character) {
    launch("HideActiveApps",
           R"("kuserdefault_ToggleAppFlag": [12, 13], "kuserdefault_ToggleAppShortcut": ")" +
               character + "\"");
    // Its panel, which opens half a second after the start.
    ASSERT_TRUE(desk.until([&] {
      return desk.run({"swaymsg", "-t", "get_tree"}).output.find(harness::kCalmdeckName) !=
             std::string::npos;
    }));
  }
  void press(const std::string& key) { desk.input().key("ctrl+alt+" + key); }
  [[nodiscard]] bool isHeard() {
    return program->waitForLine("^Pressed at", std::chrono::milliseconds(500)).has_value();
  }
  /// Pressed until it is, since sway tells a layout in its own time.
  [[nodiscard]] bool fires(const std::string& key) {
    return desk.until([&] {
      press(key);
      return isHeard();
    });
  }
  [[nodiscard]] bool isSilent(const std::string& key) {
    press(key);
    return !isHeard();
  }
};

// Keys are named by what they give without Shift.
TEST_F(SwayKeysTest, FollowTheCharacterOnTheKeyboardsOwnLayout) {
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
    desk.useLayouts(row.layouts, row.inEffect);
    start(row.character);
    EXPECT_TRUE(fires(row.key)) << row.layouts;
    program.reset();
  }
}

TEST_F(SwayKeysTest, FollowAChangeOfTheLayoutAndNoLockKey) {
  start("z");
  ASSERT_TRUE(fires("z"));
  for (const std::uint32_t inEffect : {1U, 0U}) {
    desk.useLayouts("us,de", inEffect);
    EXPECT_TRUE(fires("z")) << inEffect;
    EXPECT_TRUE(isSilent("y")) << inEffect;
  }
  for (const char* lock : {"Caps_Lock", "Num_Lock"}) {
    desk.input().key(lock);
    EXPECT_TRUE(fires("z")) << lock;
  }
}

/// As people write them: another name for a modifier, by a variable, in an included file, by the
/// number of the key.
class UsersKeysTest : public SwayKeysTest {
 protected:
  UsersKeysTest() : SwayKeysTest("set $keys Control+Mod1\ninclude keys") {}
};

TEST_F(UsersKeysTest, StayTheirs) {
  const std::filesystem::path sign = desk.home().home() / "pressed";
  for (const char* binding : {"bindsym $keys+P", "bindcode $keys+33"}) {
    std::filesystem::remove(sign);
    desk.home().writeConfig("sway/keys", std::string(binding) + " exec touch " + sign.string());
    desk.reload();
    start("p");
    press("p");
    EXPECT_TRUE(desk.until([&] { return std::filesystem::exists(sign); })) << binding;
    EXPECT_THAT(program->output(), testing::Not(testing::HasSubstr("Pressed at"))) << binding;
    program.reset();
  }
}

TEST_F(SwayKeysTest, OnePressIsReportedOnceAlsoAfterAReloadAndTheKeyIsFreeAtTheEnd) {
  start("p");
  press("p");
  EXPECT_TRUE(program->waitForLine("^Pressed at"));
  desk.reload();
  const auto before = program->lines("Pressed at").size();
  EXPECT_TRUE(fires("p"));
  EXPECT_EQ(program->lines("Pressed at").size(), before + 1);
  program->terminate(harness::kPatience);
  EXPECT_FALSE(desk.run({"swaymsg", "unbindcode Ctrl+Mod1+33"}).succeeded())
      << "it has given the key back";
}

}  // namespace
