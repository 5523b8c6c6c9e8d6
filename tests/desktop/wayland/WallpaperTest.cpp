// The picture behind everything, swapped by the mode and put back, beside the real swaybg.

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <regex>

#include "desktop/wayland/ModeDesk.h"

using harness::Compositor;

namespace {

constexpr int kWidth = harness::WaylandDesk::kOutputWidth;
constexpr int kHeight = harness::WaylandDesk::kOutputHeight;
constexpr std::uint32_t kRed = 0xc02020;
constexpr std::uint32_t kGreen = 0x20a040;
constexpr std::uint32_t kBlue = 0x2040c0;
/// With what has a meaning to sway or to a shell.
constexpr const char* kOdd = "it's 'odd' #2 $HOME `ls` (1);,  & ~*?[x] \xc3\xa9.png";

/// A desktop whose pictures are swaybg's, started by sway or by the user.
class PicturesDesk : public wayland_test::ModeDesk {
 public:
  explicit PicturesDesk(Compositor compositor)
      : ModeDesk({.compositor = compositor,
                  .configuration = compositor == Compositor::Sway ? "include pictures" : ""}) {}

  /// With a mode that shows this picture.
  void launchWith(const std::string& chosen) {
    launch("Wallpaper", harness::chosenPicture(chosen));
  }
  /// Has sway itself show that.
  void configure(const std::string& output, const std::string& background) {
    desk.mustRun({"swaymsg", "--", "output", output, "bg", background});
  }
  /// Has sway's configuration have these lines, too.
  void configureForGood(const std::string& lines) {
    desk.home().writeConfig("sway/pictures", lines + "\n");
    desk.reload();
  }
  /// Has a program of the user's show that on all outputs.
  [[nodiscard]] std::unique_ptr<harness::Process> swaybg(const std::string& file) {
    return desk.start({"swaybg", "-o", "*", "-m", "fill", "-i", file});
  }
  /// On the left and on the right output, where no panel stands.
  [[nodiscard]] bool shows(std::uint32_t left, std::uint32_t right) {
    return desk.until([&] {
      return desk.screen().pixel(kWidth / 2, kHeight - 2) == left &&
             desk.screen().pixel(kWidth + kWidth / 2, kHeight - 2) == right;
    });
  }
};

class SwayPictureTest : public testing::Test, public PicturesDesk {
 protected:
  SwayPictureTest() : PicturesDesk(Compositor::Sway) {}

  /// Blue in the mode, over the red of sway's configuration, which has these lines before.
  void swap(const std::string& further = {}) {
    configureForGood(further + "output * bg '" + desk.picture("theirs.png", kRed) + "' fill");
    ASSERT_TRUE(shows(kRed, kRed));
    launchWith(desk.picture("ours.png", kBlue));
    toggle();
    ASSERT_TRUE(shows(kBlue, kBlue));
  }
};

TEST_F(SwayPictureTest, EachOutputGetsItsOwnPictureBack) {
  configure("HEADLESS-1", "'" + desk.picture("a  left.png", kRed) + "' tile");
  configure("HEADLESS-2", "#20a040 solid_color");
  ASSERT_TRUE(shows(kRed, kGreen));
  launchWith(desk.picture(kOdd, kBlue));
  for (int round = 0; round < 2; ++round) {
    toggle();
    EXPECT_TRUE(shows(kBlue, kBlue));
    toggle();
    EXPECT_TRUE(shows(kRed, kGreen));
  }
  EXPECT_THAT(program->errorOutput(), testing::Not(testing::HasSubstr("calmdeck.wallpaper")));
}

TEST_F(SwayPictureTest, IsLaidOutAsTheOneBefore) {
  configure("*", "'" + desk.picture("small.png", kRed) + "' center #20a040");
  ASSERT_TRUE(shows(kGreen, kGreen));
  launchWith(desk.picture("ours.png", kBlue));
  toggle();
  constexpr int kMiddle = kHeight / 2;
  EXPECT_TRUE(
      desk.until([&] { return desk.screen().pixel(kWidth + kWidth / 2, kMiddle) == kBlue; }));
  EXPECT_TRUE(shows(kGreen, kGreen));
}

TEST_F(SwayPictureTest, StaysWhenSwayReadsItsConfigurationAnew) {
  ASSERT_NO_FATAL_FAILURE(swap());
  const pid_t before = desk.swaysSwaybg().first;
  desk.reload();
  EXPECT_TRUE(desk.until([&] { return desk.swaysSwaybg().first != before; }));
  EXPECT_TRUE(shows(kBlue, kBlue));
  toggle();
  ASSERT_TRUE(shows(kRed, kRed));
  desk.reload();
  EXPECT_TRUE(shows(kRed, kRed));
}

TEST_F(SwayPictureTest, ComesAndGoesAlsoWhereSwaybgWasKilled) {
  ASSERT_NO_FATAL_FAILURE(swap());
  ASSERT_EQ(::kill(desk.swaysSwaybg().first, SIGKILL), 0);
  ASSERT_TRUE(desk.until([&] { return desk.swaysSwaybg().first == 0; }));
  toggle();
  EXPECT_TRUE(shows(kRed, kRed));
}

TEST_F(SwayPictureTest, OutputsAreSwaysAlsoWhileItsSwaybgTakesTimeToStart) {
  namespace fs = std::filesystem;
  const fs::path slow = desk.home().home() / "slow";
  std::ofstream(slow) << "#!/bin/sh\nsleep 0.5\nexec swaybg \"$@\"\n";
  fs::permissions(slow, fs::perms::owner_all | fs::perms::others_exec | fs::perms::others_read);
  ASSERT_NO_FATAL_FAILURE(swap("swaybg_command " + slow.string() + "\n"));
  toggle();
  EXPECT_TRUE(shows(kRed, kRed));
}

// A monitor by what it is, as "Dell Inc. U2720Q 123", wherever it is plugged in.
TEST_F(SwayPictureTest, IsToldOfAnOutputByTheNameThatTheConfigurationHas) {
  const std::string outputs = desk.run({"swaymsg", "-p", "-t", "get_outputs"}).output;
  std::smatch found;
  ASSERT_TRUE(std::regex_search(outputs, found, std::regex("Output HEADLESS-2 '([^']*)'")))
      << outputs;
  const std::string name = found[1];
  const std::string theirs = desk.picture("theirs.png", kRed);
  configureForGood("output * bg #20a040 solid_color\noutput \"" + name + "\" bg '" + theirs +
                   "' fill");
  const auto isTold = [&](const std::string& file) {
    return desk.until([&] {
      std::string words = desk.swaysSwaybg().second;
      std::ranges::replace(words, '\0', ' ');
      return words.find("-o " + name + " -i " + file + " ") != std::string::npos;
    });
  };
  ASSERT_TRUE(isTold(theirs));
  const std::string ours = desk.picture("ours.png", kBlue);
  launchWith(ours);
  toggle();
  EXPECT_TRUE(isTold(ours));
  toggle();
  EXPECT_TRUE(isTold(theirs));
}

class LayerPictureTest : public testing::TestWithParam<Compositor>, public PicturesDesk {
 protected:
  LayerPictureTest() : PicturesDesk(GetParam()) {}
};

INSTANTIATE_TEST_SUITE_P(On, LayerPictureTest,
                         testing::ValuesIn(harness::installedOf({Compositor::Sway,
                                                                 Compositor::Labwc})),
                         testing::PrintToStringParamName());

TEST_P(LayerPictureTest, LiesOverTheUsersSwaybgAsLongAsWeRun) {
  const auto user = swaybg(desk.picture("theirs.png", kRed));
  ASSERT_TRUE(shows(kRed, kRed));
  launchWith(desk.picture("ours.png", kBlue));
  toggle();
  EXPECT_TRUE(shows(kBlue, kBlue));
  toggle();
  EXPECT_TRUE(shows(kRed, kRed));
  toggle();
  ASSERT_TRUE(shows(kBlue, kBlue));
  const std::string second = desk.outputs()[1].name;
  if (GetParam() == Compositor::Labwc && desk.turnOff(second)) {
    desk.turnOn(second);
    EXPECT_TRUE(shows(kBlue, kBlue)) << "also where its output comes back";
  }
  program->kill();
  EXPECT_TRUE(shows(kRed, kRed)) << "nothing of ours outlives us";
  EXPECT_TRUE(user->running());
}

TEST_P(LayerPictureTest, IsShownWhereNobodyElseDraws) {
  const std::uint32_t before = desk.screen().pixel(kWidth / 2, kHeight - 2);
  launchWith(desk.picture("ours.png", kBlue));
  toggle();
  EXPECT_TRUE(shows(kBlue, kBlue));
  toggle();
  EXPECT_TRUE(shows(before, before));
}

TEST_P(LayerPictureTest, ARefusalIsOneLineForAllMonitors) {
  launchWith("/no.png");
  toggle();
  const auto refusal = [&] {
    return program->waitForLine("calmdeck.wallpaper: /no.png does not exist.",
                                std::chrono::milliseconds(0), harness::Stream::Error);
  };
  EXPECT_TRUE(desk.until([&] { return refusal().has_value(); }));
  toggle();
  toggle();
  EXPECT_TRUE(desk.until([&] { return refusal().has_value(); })) << "and again when tried again";
  EXPECT_FALSE(refusal());
}

/// Its windows are seen by nobody: it counts by its name on the bus, where its desktop is on.
TEST_F(SwayPictureTest, PcManFmQtIsToldWhereItDrawsTheDesktop) {
  const std::string name = "org.pcmanfm.PCManFM";
  const std::filesystem::path settings = desk.home().config() / "pcmanfm-qt/stage/settings.conf";
  desk.home().writeConfig(
      "pcmanfm-qt/stage/settings.conf",
      "[Desktop]\nWallpaper=" + desk.picture("theirs.png", kRed) + "\nWallpaperMode=stretch\n");
  const auto start = [&](const std::string& option) {
    auto started =
        desk.start({"pcmanfm-qt", "--profile=stage", option}, {{"QT_QPA_PLATFORM", "offscreen"}});
    EXPECT_TRUE(desk.until([&] { return desk.bus().hasOwner(name); }));
    return started;
  };
  const std::string chosen = desk.picture("ours.png", kBlue);
  auto files = start("--daemon-mode");
  launchWith(chosen);
  toggle();
  EXPECT_TRUE(shows(kBlue, kBlue)) << "its file manager alone draws no desktop";
  toggle();
  files.reset();
  ASSERT_TRUE(desk.until([&] { return !desk.bus().hasOwner(name); }));
  const auto desktop = start("--desktop");
  const std::string before = harness::textOf(settings);
  toggle();
  EXPECT_TRUE(
      desk.until([&] { return harness::textOf(settings).find(chosen) != std::string::npos; }));
  toggle();
  EXPECT_TRUE(desk.until([&] { return harness::textOf(settings) == before; }));
}

}  // namespace
