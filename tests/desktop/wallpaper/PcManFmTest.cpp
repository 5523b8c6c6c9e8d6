// LXDE's and LXQt's desktops, which are told to show a picture and follow in their own time.

#include <gmock/gmock.h>

#include <csignal>

#include "desktop/wallpaper/WallpaperDesk.h"

namespace wallpaper_test {
namespace {

using testing::HasSubstr;

const std::vector<Rect> kTwo = harness::DeskOptions{}.monitors;

class FileManagerDesk : public WallpaperDesk {
 public:
  FileManagerDesk(DesktopIcons icons, std::string file, std::vector<Rect> monitors,
                  const std::string& chosen = kAnyName)
      : WallpaperDesk(icons, {.monitors = std::move(monitors)}, chosen), file_(std::move(file)) {}

  /// With these settings for the first monitor, which is red then.
  void startWith(const std::string& text) {
    home().writeConfig(file_, text);
    startIcons();
    ASSERT_TRUE(shows(0, kRed));
    launch();
  }
  [[nodiscard]] std::string stored() { return harness::textOf(home().config() / file_); }
  /// In the end.
  [[nodiscard]] bool stores(const std::string& part) {
    return until([&] { return stored().find(part) != std::string::npos; });
  }
  void store(const std::string& text) { home().writeConfig(file_, text); }
  void hold(bool hung) { hung ? icons().freeze() : icons().thaw(); }
  [[nodiscard]] bool complainsOfSilence() {
    return program().process().complains("does not answer");
  }
  const std::string old = picture("old%20.png", kRed);

 private:
  std::string file_;
};

class LxqtDesk : public FileManagerDesk {
 public:
  LxqtDesk() : FileManagerDesk(DesktopIcons::PcmanfmQt, "pcmanfm-qt/lxqt/settings.conf", kTwo) {}
  const std::string before = "[Desktop]\nWallpaper=" + old + "\nWallpaperMode=stretch\n";
};

TEST(LxqtSwap, OtherSettingsThatChangedMeanwhileStay) {
  LxqtDesk lxqt;
  lxqt.startWith(lxqt.before);
  lxqt.swap();
  lxqt.store(lxqt.stored() + "\n[User]\nchanged=1\n");
  lxqt.toggle();
  EXPECT_TRUE(lxqt.shows(0, kRed));
  EXPECT_TRUE(lxqt.stores("Wallpaper=" + lxqt.old));
  EXPECT_THAT(lxqt.stored(), HasSubstr("changed=1"));
}

TEST(LxqtSwap, HungDesktopEndsWithWhatWasWishedLastAndIsOneLine) {
  for (const bool endsSwapped : {false, true}) {
    LxqtDesk lxqt;
    lxqt.startWith(lxqt.before);
    lxqt.hold(true);
    for (int press = 0; press < (endsSwapped ? 5 : 4); ++press) lxqt.toggle();
    EXPECT_EQ(lxqt.stored(), lxqt.before);
    ASSERT_TRUE(lxqt.complainsOfSilence());
    lxqt.hold(false);
    if (endsSwapped) {
      EXPECT_TRUE(lxqt.shows(1, kYellow));
      lxqt.toggle();
    }
    EXPECT_TRUE(lxqt.shows(1, kRed));
    EXPECT_TRUE(lxqt.settles("pcmanfm-qt/lxqt/settings.conf\n" + lxqt.before)) << lxqt.stored();
    EXPECT_EQ(lxqt.program().complaints("calmdeck.wallpaper"), 1U)
        << lxqt.program().process().errorOutput();
  }
}

TEST(LxqtSwap, DesktopThatEndsWithoutAnAnswerLeavesItsFileAsItWas) {
  LxqtDesk lxqt;
  lxqt.startWith(lxqt.before);
  lxqt.swap();
  ASSERT_TRUE(lxqt.until([&] { return lxqt.stored() != lxqt.before; }));
  lxqt.hold(true);
  lxqt.toggle();
  ::kill(lxqt.icons().pid(), SIGKILL);
  EXPECT_TRUE(lxqt.until([&] { return lxqt.stored() == lxqt.before; })) << lxqt.stored();
}

class LxdeDesk : public FileManagerDesk {
 public:
  /// pcmanfm 1.3 takes no other names while it runs.
  static constexpr const char* kAsciiName = "a \"b\" it's %20.png";

  explicit LxdeDesk(int monitors)
      : FileManagerDesk(DesktopIcons::Pcmanfm, "pcmanfm/default/desktop-items-0.conf",
                        {kTwo.begin(), kTwo.begin() + monitors}, kAsciiName) {}
  const std::string before = "[*]\nwallpaper_mode=fit\nwallpaper_common=1\nwallpaper=" + old +
                             "\ndesktop_bg=#2040c0\ndesktop_fg=#ffffff\ndesktop_shadow=#000000\n";
};

TEST(LxdeSwap, OneThatIsTakenBackAtOnceIsTakenBack) {
  LxdeDesk lxde(2);
  lxde.startWith(lxde.before);
  const std::string settings = lxde.backdrops();
  lxde.program().press();
  lxde.toggle();
  EXPECT_TRUE(lxde.settles(settings)) << lxde.backdrops();
  EXPECT_TRUE(lxde.shows(0, kRed));
}

TEST(LxdeSwap, WhatTheUserChangesMeanwhileStaysAndASingleMonitorNeedsNoNewStart) {
  LxdeDesk lxde(1);
  lxde.startWith(lxde.before);
  lxde.swap();
  lxde.mustRun({"pcmanfm", "--wallpaper-mode=stretch"});
  ASSERT_TRUE(lxde.stores("wallpaper_mode=stretch"));
  lxde.toggle();
  EXPECT_TRUE(lxde.shows(0, kRed));
  EXPECT_TRUE(lxde.stores("wallpaper_mode=stretch\n"));
  EXPECT_TRUE(lxde.stores("wallpaper=" + lxde.old + "\n"));

  // A colour needs another mode for the picture, unless the user has chosen one by then.
  for (const bool isChosen : {false, true}) {
    lxde.mustRun({"pcmanfm", "--wallpaper-mode=color"});
    ASSERT_TRUE(lxde.stores("wallpaper_mode=color"));
    lxde.swap();
    EXPECT_TRUE(lxde.stores("wallpaper_mode=crop"));
    if (isChosen) lxde.mustRun({"pcmanfm", "--wallpaper-mode=center"});
    ASSERT_TRUE(lxde.stores(isChosen ? "wallpaper_mode=center" : "wallpaper_mode=crop"));
    lxde.toggle();
    EXPECT_TRUE(lxde.stores(isChosen ? "wallpaper_mode=center" : "wallpaper_mode=color"));
    EXPECT_TRUE(lxde.stores("wallpaper=" + lxde.old + "\n"));
  }
  EXPECT_TRUE(lxde.icons().running());
}

TEST(LxdeSwap, FileNameThatTheDesktopWouldLoseIsRefused) {
  FileManagerDesk lxde(DesktopIcons::Pcmanfm, "pcmanfm/default/desktop-items-0.conf", kTwo,
                       "back\\slash.png");
  lxde.startWith("[*]\nwallpaper_mode=stretch\nwallpaper=" + lxde.old + "\n");
  lxde.toggle();
  EXPECT_THAT(lxde.program().printed(), HasSubstr("backslash"));
}

/// By how many monitors there are: with one the desktop follows an order, with two it starts again.
class HungLxdeDesktop : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Monitors, HungLxdeDesktop, testing::Values(1, 2));

TEST_P(HungLxdeDesktop, FollowsWhenItGoesOnAndWhatItWasToldLastCounts) {
  const bool endsSwapped = GetParam() > 1;
  LxdeDesk lxde(GetParam());
  lxde.startWith(lxde.before);
  lxde.hold(true);
  lxde.toggle();
  ASSERT_TRUE(lxde.complainsOfSilence());
  EXPECT_TRUE(lxde.icons().running());
  if (!endsSwapped) lxde.toggle();
  lxde.hold(false);
  if (endsSwapped) {
    EXPECT_TRUE(lxde.shows(0, kYellow));
    lxde.toggle();
  }
  EXPECT_TRUE(lxde.shows(0, kRed));
  EXPECT_TRUE(lxde.until([&] { return lxde.stored() == lxde.before; }));
}

}  // namespace
}  // namespace wallpaper_test
