// LXDE's and LXQt's desktops.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <iterator>

#include "desktop/wallpaper/WallpaperDesk.h"

namespace wallpaper_test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr std::uint32_t kRed = 0xc02020;
constexpr std::uint32_t kGreen = 0x20a040;
constexpr std::uint32_t kBlue = 0x2040c0;
constexpr std::uint32_t kYellow = 0xe0c020;

class FileManagerDesk : public WallpaperDesk {
 public:
  explicit FileManagerDesk(std::vector<harness::Rect> monitors = harness::DeskOptions{}.monitors)
      : WallpaperDesk(
            {.windowManager = harness::WindowManager::Openbox, .monitors = std::move(monitors)}) {}

  [[nodiscard]] std::string read(const std::string& file) {
    std::ifstream stored(desk().home().config() / file);
    return {std::istreambuf_iterator<char>(stored), {}};
  }
  void hold(bool hung) { ::kill(desk().icons().pid(), hung ? SIGSTOP : SIGCONT); }
};

constexpr const char* kLxqt = "pcmanfm-qt/lxqt/settings.conf";

class LxqtDesk : public FileManagerDesk {
 public:
  /// The desktop with these settings, or without any.
  void startWith(const std::string& settings) {
    if (!settings.empty()) desk().home().writeConfig(kLxqt, settings);
    desk().startIcons(harness::DesktopIcons::PcmanfmQt);
    ASSERT_TRUE(desk().until([&] { return path(kFirst) != kNothing; }));
  }
  void startWithRed() {
    startWith("[Desktop]\nWallpaper=" + picture("old.png", kRed) + "\nWallpaperMode=stretch\n");
    ASSERT_TRUE(shows(0, kRed));
  }
  /// The settings file in the end.
  [[nodiscard]] bool stores(const std::string& text) {
    return desk().until([&] { return read(kLxqt) == text; });
  }
  [[nodiscard]] bool storesPicture(const std::string& file) {
    return desk().until([&] { return read(kLxqt).find("Wallpaper=" + file) != std::string::npos; });
  }
  /// Both monitors show a yellow picture, which the desktop has as `backdrop`, and then what they
  /// showed when `old` was told.
  void swapAndBack(const std::vector<std::string>& old, std::uint32_t before,
                   const std::string& backdropMeanwhile) {
    const std::string chosen = picture("chosen.png", kYellow);
    for (const char* screen : {kFirst, kSecond}) EXPECT_EQ(set(screen, chosen), kNothing);
    for (const int monitor : {0, 1}) EXPECT_TRUE(shows(monitor, kYellow));
    EXPECT_THAT(backdrop(kSecond), HasSubstr(backdropMeanwhile));
    EXPECT_EQ(set(kFirst, old[0]), kNothing);
    EXPECT_EQ(set(kSecond, old[1]), kNothing);
    for (const int monitor : {0, 1}) EXPECT_TRUE(shows(monitor, before));
  }
};

TEST(LxqtWallpaper, PictureAndFileComeBack) {
  LxqtDesk lxqt;
  const std::string before = "[Desktop]\nWallpaper=" + lxqt.picture("old.png", kRed) +
                             "\nWallpaperMode=zoom\n\n[Other]\nkept=true\n";
  lxqt.startWith(before);
  ASSERT_TRUE(lxqt.shows(0, kRed));
  const std::vector<std::string> old{lxqt.path(kFirst), lxqt.path(kSecond)};
  EXPECT_THAT(old[0], testing::EndsWith("/old.png"));
  lxqt.swapAndBack(old, kRed, "/chosen.png\t5\t1\t");
  EXPECT_TRUE(lxqt.stores(before)) << lxqt.read(kLxqt);
}

TEST(LxqtWallpaper, ColourAndAbsentFileComeBack) {
  for (const bool hasFile : {true, false}) {
    LxqtDesk lxqt;
    const std::string before =
        hasFile ? "[Desktop]\nBgColor=#2040c0\nWallpaperMode=none\n" : std::string();
    lxqt.startWith(before);
    const std::uint32_t colour = hasFile ? kBlue : 0;
    ASSERT_TRUE(lxqt.shows(1, colour));
    const std::vector<std::string> old{lxqt.path(kFirst), lxqt.path(kSecond)};
    EXPECT_THAT(old[0], StartsWith("/dev/null/"));
    lxqt.swapAndBack(old, colour, "/chosen.png\t3\t1\t");
    EXPECT_TRUE(lxqt.stores(before)) << lxqt.read(kLxqt);
    EXPECT_EQ(lxqt.path(kFirst), old[0]);
    EXPECT_EQ(std::filesystem::exists(lxqt.desk().home().config() / kLxqt), hasFile);
  }
}

TEST(LxqtWallpaper, OtherSettingsThatChangedMeanwhileStay) {
  LxqtDesk lxqt;
  lxqt.startWithRed();
  const std::string told = lxqt.path(kFirst);
  const std::string chosen = lxqt.picture("chosen.png", kYellow);
  EXPECT_EQ(lxqt.set(kFirst, chosen), kNothing);
  ASSERT_TRUE(lxqt.storesPicture(chosen));
  lxqt.desk().home().writeConfig(kLxqt, lxqt.read(kLxqt) + "\n[User]\nchanged=1\n");
  EXPECT_EQ(lxqt.set(kFirst, told), kNothing);
  EXPECT_TRUE(lxqt.shows(0, kRed));
  EXPECT_TRUE(lxqt.storesPicture(told));
}

TEST(LxqtWallpaper, AnyFileNameIsShownAndReadBack) {
  LxqtDesk lxqt;
  lxqt.startWith("[Desktop]\nWallpaper=" + lxqt.picture("old.png", kRed) +
                 "\nWallpaperMode=stretch\n");
  std::uint32_t colour = 0x404040;
  for (const char* name :
       {"with blank.png", "per%20cent.png", "quo\"te's.png", "\xc3\xa4\xe5\xb1\xb1.png"}) {
    const std::string path = lxqt.picture(name, colour);
    EXPECT_EQ(lxqt.set(kFirst, path), kNothing);
    EXPECT_TRUE(lxqt.shows(0, colour)) << name;
    EXPECT_EQ(lxqt.path(kFirst), path);
    colour += 0x202020;
  }
}

TEST(LxqtWallpaper, SlowDesktopGetsThePictureThatCountsFromTheOrderOn) {
  LxqtDesk lxqt;
  lxqt.startWithRed();
  const std::string before = lxqt.read(kLxqt);
  const std::string old = lxqt.path(kFirst);
  const std::string chosen = lxqt.picture("chosen.png", kYellow);
  lxqt.hold(true);
  EXPECT_EQ(lxqt.set(kFirst, chosen), kNothing);
  EXPECT_THAT(lxqt.backdrop(kSecond), StartsWith(chosen + "\t3\t1\t"));
  EXPECT_TRUE(lxqt.isAnsweredAtOnce({"set", kSecond, chosen}));
  EXPECT_EQ(lxqt.read(kLxqt), before);
  lxqt.hold(false);
  EXPECT_TRUE(lxqt.shows(0, kYellow));
  EXPECT_TRUE(lxqt.storesPicture(chosen));
  EXPECT_EQ(lxqt.path(kFirst), chosen);
  EXPECT_EQ(lxqt.set(kFirst, old), kNothing);
  EXPECT_TRUE(lxqt.shows(0, kRed));
}

TEST(LxqtWallpaper, HungDesktopEndsWithWhatWasWishedLastAndIsOneLine) {
  for (const bool endsSwapped : {false, true}) {
    LxqtDesk lxqt;
    lxqt.startWithRed();
    const std::string before = lxqt.read(kLxqt);
    const std::string chosen = lxqt.picture("chosen.png", kYellow);
    std::string told;
    const auto swap = [&] {
      told = lxqt.path(kFirst);
      EXPECT_EQ(lxqt.set(kFirst, chosen), kNothing);
    };
    const auto putBack = [&] { EXPECT_EQ(lxqt.set(kFirst, told), kNothing); };
    lxqt.hold(true);
    for (int time = 0; time < 2; ++time) {
      swap();
      putBack();
    }
    if (endsSwapped) swap();
    ASSERT_TRUE(lxqt.desk().until(
        [&] { return lxqt.complaints().find("does not answer") != std::string::npos; }));
    lxqt.hold(false);
    if (endsSwapped) {
      EXPECT_TRUE(lxqt.storesPicture(chosen));
      EXPECT_TRUE(lxqt.shows(1, kYellow));
      putBack();
    }
    EXPECT_TRUE(lxqt.shows(1, kRed));
    EXPECT_TRUE(lxqt.stores(before)) << lxqt.read(kLxqt);
    const std::string complaints = lxqt.complaints();
    EXPECT_EQ(std::ranges::count(complaints, '\n'), 1) << complaints;
  }
}

TEST(LxqtWallpaper, DesktopThatEndsWithoutAnAnswerLeavesItsFileAsItWas) {
  LxqtDesk lxqt;
  lxqt.startWithRed();
  const std::string before = lxqt.read(kLxqt);
  const std::string old = lxqt.path(kFirst);
  const std::string chosen = lxqt.picture("chosen.png", kYellow);
  EXPECT_EQ(lxqt.set(kFirst, chosen), kNothing);
  ASSERT_TRUE(lxqt.storesPicture(chosen));
  lxqt.hold(true);
  EXPECT_EQ(lxqt.set(kFirst, old), kNothing);
  ::kill(lxqt.desk().icons().pid(), SIGKILL);
  EXPECT_TRUE(lxqt.stores(before)) << lxqt.read(kLxqt);
}

TEST(LxqtWallpaper, JunkNeverReachesTheDesktop) {
  LxqtDesk lxqt;
  lxqt.startWith("[Desktop]\nWallpaper=" + lxqt.picture("old.png", kRed) +
                 "\nWallpaperMode=stretch\n");
  const std::string before = lxqt.read(kLxqt);
  const std::string junk = lxqt.desk().home().home() / "junk.png";
  std::ofstream(junk) << "no picture";
  EXPECT_THAT(lxqt.set(kFirst, junk), HasSubstr("not a picture"));
  EXPECT_EQ(lxqt.read(kLxqt), before);
}

TEST(LxqtWallpaper, ChangesBySomebodyElseAreTold) {
  LxqtDesk lxqt;
  lxqt.startWith("[Desktop]\nWallpaper=" + lxqt.picture("old.png", kRed) +
                 "\nWallpaperMode=stretch\n");
  EXPECT_EQ(lxqt.ask({"watch"}), "watching");
  EXPECT_TRUE(lxqt.desk().bus().call("org.pcmanfm.PCManFM", "/Application",
                                     "org.pcmanfm.Application.setWallpaper",
                                     {"string:" + lxqt.picture("other.png", kGreen), "string:"}));
  EXPECT_TRUE(lxqt.desk().until([&] { return lxqt.ask({"changes"}) != "0"; }));
}

std::string lxde(int monitor) {
  return "pcmanfm/default/desktop-items-" + std::to_string(monitor) + ".conf";
}

class LxdeDesk : public FileManagerDesk {
 public:
  using FileManagerDesk::FileManagerDesk;

  [[nodiscard]] std::string settings(const std::string& mode, const std::string& file) const {
    return "[*]\nwallpaper_mode=" + mode + "\nwallpaper_common=1\nwallpaper=" + file +
           "\ndesktop_bg=#2040c0\ndesktop_fg=#ffffff\ndesktop_shadow=#000000\n";
  }
  void startWith(const std::vector<std::string>& texts) {
    for (std::size_t i = 0; i < texts.size(); ++i) {
      desk().home().writeConfig(lxde(static_cast<int>(i)), texts[i]);
    }
    desk().startIcons(harness::DesktopIcons::Pcmanfm);
  }
};

TEST(LxdeWallpaper, EachMonitorGetsItsOwnStateBack) {
  LxdeDesk desktop;
  const std::vector<std::string> before{
      desktop.settings("stretch", desktop.picture("old.png", kRed)),
      desktop.settings("color", desktop.picture("unseen.png", kGreen))};
  desktop.startWith(before);
  ASSERT_TRUE(desktop.shows(0, kRed));
  ASSERT_TRUE(desktop.shows(1, kBlue));
  const std::string chosen = desktop.picture("chosen.png", kYellow);
  const std::vector<std::string> old{desktop.path(kFirst), desktop.path(kSecond)};
  EXPECT_THAT(old[0], testing::EndsWith("/old.png"));
  EXPECT_THAT(old[1], StartsWith("/dev/null/"));
  for (const char* screen : {kFirst, kSecond}) {
    EXPECT_EQ(desktop.set(screen, chosen), kNothing);
  }
  EXPECT_TRUE(desktop.shows(0, kYellow));
  EXPECT_TRUE(desktop.shows(1, kYellow));
  EXPECT_EQ(desktop.set(kFirst, old[0]), kNothing);
  EXPECT_EQ(desktop.set(kSecond, old[1]), kNothing);
  EXPECT_TRUE(desktop.shows(0, kRed));
  EXPECT_TRUE(desktop.shows(1, kBlue));
  EXPECT_EQ(desktop.read(lxde(0)), before[0]);
  EXPECT_EQ(desktop.read(lxde(1)), before[1]);
}

TEST(LxdeWallpaper, SwapThatIsTakenBackAtOnceIsTakenBack) {
  LxdeDesk desktop;
  desktop.startWith({desktop.settings("stretch", desktop.picture("old.png", kRed)),
                     desktop.settings("fit", desktop.picture("other.png", kGreen))});
  ASSERT_TRUE(desktop.shows(0, kRed));
  const std::string chosen = desktop.picture("chosen.png", kYellow);
  const std::vector<std::string> old{desktop.path(kFirst), desktop.path(kSecond)};
  for (const char* screen : {kFirst, kSecond}) EXPECT_EQ(desktop.set(screen, chosen), kNothing);
  EXPECT_EQ(desktop.set(kFirst, old[0]), kNothing);
  EXPECT_EQ(desktop.set(kSecond, old[1]), kNothing);
  EXPECT_TRUE(desktop.desk().until(
      [&] { return desktop.path(kFirst) == old[0] && desktop.path(kSecond) == old[1]; }));
  EXPECT_TRUE(desktop.shows(0, kRed));
  EXPECT_TRUE(desktop.shows(1, kGreen));
}

TEST(LxdeWallpaper, SingleMonitorFollowsWithoutANewStart) {
  LxdeDesk desktop({{0, 0, 1280, 720}});
  const std::string before = desktop.settings("fit", desktop.picture("old.png", kRed));
  desktop.startWith({before});
  ASSERT_TRUE(desktop.shows(0, kRed));
  const std::string old = desktop.path(kFirst);
  std::uint32_t colour = 0x404040;
  for (const char* name :
       {"with blank.png", "per%20cent.png", "quo\"te's.png", "\xc3\xa4\xe5\xb1\xb1.png"}) {
    const std::string path = desktop.picture(name, colour);
    EXPECT_EQ(desktop.set(kFirst, path), kNothing);
    EXPECT_TRUE(desktop.shows(0, colour)) << name;
    const bool isAscii = *name != '\xc3';  // pcmanfm 1.3 takes no others while it runs
    EXPECT_EQ(desktop.desk().icons().running(), isAscii) << name;
    colour += 0x181818;
  }
  EXPECT_THAT(desktop.set(kFirst, desktop.picture("back\\slash.png", kGreen)),
              HasSubstr("backslash"));
  EXPECT_EQ(desktop.set(kFirst, old), kNothing) << old;
  EXPECT_TRUE(desktop.shows(0, kRed));
}

TEST(LxdeWallpaper, WhatTheUserChangesMeanwhileStays) {
  LxdeDesk desktop({{0, 0, 1280, 720}});
  desktop.startWith({desktop.settings("fit", desktop.picture("old.png", kRed))});
  ASSERT_TRUE(desktop.shows(0, kRed));
  const std::string chosen = desktop.picture("chosen.png", kYellow);
  const auto stores = [&](const std::string& text) {
    return desktop.desk().until(
        [&] { return desktop.read(lxde(0)).find(text) != std::string::npos; });
  };
  const std::string old = desktop.path(kFirst);
  EXPECT_EQ(desktop.set(kFirst, chosen), kNothing);
  (void)desktop.run({"pcmanfm", "--wallpaper-mode=stretch"});
  ASSERT_TRUE(stores("wallpaper_mode=stretch"));
  EXPECT_EQ(desktop.set(kFirst, old), kNothing);
  EXPECT_TRUE(desktop.shows(0, kRed));
  EXPECT_TRUE(stores("wallpaper_mode=stretch\n"));
  EXPECT_TRUE(stores("wallpaper=" + old + "\n"));

  // A colour needs another mode for the picture, unless the user has chosen one by then.
  for (const bool isChosen : {false, true}) {
    (void)desktop.run({"pcmanfm", "--wallpaper-mode=color"});
    ASSERT_TRUE(stores("wallpaper_mode=color"));
    const std::string reserved = desktop.path(kFirst);
    EXPECT_EQ(desktop.set(kFirst, chosen), kNothing);
    EXPECT_TRUE(stores("wallpaper_mode=crop"));
    if (isChosen) (void)desktop.run({"pcmanfm", "--wallpaper-mode=center"});
    ASSERT_TRUE(stores(isChosen ? "wallpaper_mode=center" : "wallpaper_mode=crop"));
    EXPECT_EQ(desktop.set(kFirst, reserved), kNothing);
    EXPECT_TRUE(stores(isChosen ? "wallpaper_mode=center" : "wallpaper_mode=color"));
    EXPECT_TRUE(stores("wallpaper=" + old + "\n"));
  }
}

/// By how many monitors there are: with one the desktop follows an order, with two it starts again.
class HungLxdeDesktop : public testing::TestWithParam<int> {};

TEST_P(HungLxdeDesktop, FollowsWhenItGoesOnAndWhatItWasToldLastCounts) {
  const std::vector<harness::Rect> all = harness::DeskOptions{}.monitors;
  const bool endsSwapped = GetParam() > 1;
  LxdeDesk desktop({all.begin(), all.begin() + GetParam()});
  const std::string before = desktop.settings("fit", desktop.picture("old.png", kRed));
  desktop.startWith({before, before});
  ASSERT_TRUE(desktop.shows(0, kRed));
  const std::string chosen = desktop.picture("chosen.png", kYellow);
  const std::string old = desktop.path(kFirst);
  desktop.hold(true);
  EXPECT_EQ(desktop.set(kFirst, chosen), kNothing);
  EXPECT_EQ(desktop.path(kFirst), chosen);
  EXPECT_TRUE(desktop.isAnsweredAtOnce({"set", kFirst, chosen}));
  ASSERT_TRUE(desktop.desk().until(
      [&] { return desktop.complaints().find("does not answer") != std::string::npos; }));
  EXPECT_TRUE(desktop.desk().icons().running());
  const auto putBack = [&] { EXPECT_EQ(desktop.set(kFirst, old), kNothing); };
  if (!endsSwapped) putBack();
  desktop.hold(false);
  if (endsSwapped) {
    EXPECT_TRUE(desktop.shows(0, kYellow));
    putBack();
  }
  EXPECT_TRUE(desktop.shows(0, kRed));
  EXPECT_TRUE(desktop.desk().until([&] { return desktop.read(lxde(0)) == before; }));
}

INSTANTIATE_TEST_SUITE_P(Monitors, HungLxdeDesktop, testing::Values(1, 2));

}  // namespace
}  // namespace wallpaper_test
