#include <gmock/gmock.h>

#include "desktop/wayland/ModeDesk.h"

using harness::Compositor;
using harness::WaylandDesk;

namespace {

constexpr const char* kSink = "out1";
constexpr std::uint32_t kOutside = 0xd02010;
constexpr std::uint32_t kInside = 0x1020e0;

/// The real program as a native client, told to mute the speaker.
class WaylandProgramTest : public testing::TestWithParam<Compositor>,
                           public wayland_test::ModeDesk {
 protected:
  explicit WaylandProgramTest(const std::string& configuration = {},
                              const std::string& settings = harness::kControlAltP)
      : ModeDesk({.compositor = GetParam(),
                  .bar = true,
                  .sound = harness::SoundServerKind::PulseAudio,
                  .configuration = configuration}) {
    launch("SpeakerOff", settings);
  }
  [[nodiscard]] bool sinkMuted(bool muted) {
    return desk.until([&] { return desk.sound().sinkMuted(kSink) == muted; });
  }
};

INSTANTIATE_TEST_SUITE_P(Compositors, WaylandProgramTest,
                         testing::ValuesIn(harness::installedCompositors()),
                         testing::PrintToStringParamName());

TEST_P(WaylandProgramTest, TheIconComesBackWithABarThatWasKilled) {
  const auto isShown = [&] { return desk.until([&] { return desk.trayIcon().has_value(); }); };
  ASSERT_TRUE(isShown());
  for (int round = 0; round < 2; ++round) {
    desk.killBar();
    ASSERT_TRUE(desk.until([&] { return !desk.bus().hasTrayHost(); }));
    desk.startBar();
    EXPECT_TRUE(isShown());
  }
  desk.toggleMode();
  EXPECT_TRUE(sinkMuted(true));
}

TEST_P(WaylandProgramTest, EndsWithTheCompositorAndOneLine) {
  for (const bool muted : {true, false}) {
    desk.toggleMode();
    ASSERT_TRUE(sinkMuted(muted));
  }
  EXPECT_LE(program->lines("calmdeck.", harness::Stream::Error).size(), 1U)
      << "of what does not work here";
  const std::size_t before = program->errorOutput().size();
  desk.compositor().kill();
  const auto end = program->waitForExit();
  ASSERT_TRUE(end);
  EXPECT_EQ(end->signal, 0);
  EXPECT_THAT(program->errorOutput().substr(before),
              testing::MatchesRegex("[^\n]*Wayland[^\n]*\n"));
}

// Of a compositor that runs as a window of sway's, which programs in it still find.
TEST_P(WaylandProgramTest, ASwayThatIsNotItsCompositorIsLeftAlone) {
  WaylandDesk outer({.compositor = Compositor::Sway});
  const auto workspaces = [&] { return outer.run({"swaymsg", "-t", "get_workspaces"}).output; };
  outer.openWindow("outside", kOutside);
  harness::ForeignWindow& inside = desk.openWindow("inside", kInside);
  const std::string before = workspaces();
  environment["SWAYSOCK"] = outer.environment().at("SWAYSOCK");
  program.reset();
  launch("HideActiveApps");
  desk.toggleMode();
  if (GetParam() != Compositor::Sway) {
    EXPECT_TRUE(desk.until([&] { return !desk.areaOf(inside.colour); }));
  }
  ASSERT_TRUE(program->waitForLine("^Pressed at "));
  desk.toggleMode();
  EXPECT_TRUE(desk.until([&] { return desk.areaOf(inside.colour).has_value(); }));
  EXPECT_EQ(workspaces(), before);
  if (GetParam() == Compositor::Sway) return;
  EXPECT_THAT(program->errorOutput(), testing::Not(testing::HasSubstr("minimised")))
      << "the bar is no window that could be";
}

// What the preferences show there, in the user's own configuration.
constexpr const char* kSwayLine =
    "bindsym Ctrl+Alt+p exec gapplication action org.calmdeck.Calmdeck toggle-presentation-mode";
constexpr const char* kLabwcLine =
    R"(<keybind key="C-A-p"><action name="Execute" command=")"
    R"(gapplication action org.calmdeck.Calmdeck toggle-presentation-mode"/></keybind>)";

std::string configurationWithTheLine(Compositor compositor) {
  if (compositor == Compositor::Sway) return kSwayLine;
  return std::string("<keyboard>") + kLabwcLine + "</keyboard>";
}

/// Where users bind keys themselves.
class OwnKeyTest : public WaylandProgramTest {
 protected:
  OwnKeyTest() : WaylandProgramTest(configurationWithTheLine(GetParam()), {}) {}
};

INSTANTIATE_TEST_SUITE_P(Compositors, OwnKeyTest,
                         testing::ValuesIn(harness::installedOf({Compositor::Sway,
                                                                 Compositor::Labwc})),
                         testing::PrintToStringParamName());

TEST_P(OwnKeyTest, TheCompositorsOwnBindingTurnsTheModeOnAndOff) {
  ASSERT_TRUE(desk.until([this] { return desk.bus().hasOwner("org.calmdeck.Calmdeck"); }));
  for (const bool muted : {true, false}) {
    desk.input().key("ctrl+alt+p");
    EXPECT_TRUE(sinkMuted(muted));
  }
}

/// The width of a small screen.
constexpr int kLaptop = 1280;

/// Where nobody else does. Not every release has one.
class NoHotKeysTest : public WaylandProgramTest {};

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(NoHotKeysTest);
INSTANTIATE_TEST_SUITE_P(Compositors, NoHotKeysTest,
                         testing::ValuesIn(harness::installedOf({Compositor::Labwc})),
                         testing::PrintToStringParamName());

TEST_P(NoHotKeysTest, ThePreferencesShowTheLine) {
  desk.perform("preferences");
  EXPECT_TRUE(desk.until([&] { return reader.shows(kLabwcLine); }));
  for (const harness::AccessibleElement& element : reader.elements())
    EXPECT_LT(element.area.width, kLaptop / 2) << element.name << ", however long the line is";
}

}  // namespace
