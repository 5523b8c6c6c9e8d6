// What a cover shows, and when.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "desktop/x11/CoverDesk.h"

namespace cover_test {
namespace {

using namespace std::chrono_literals;

constexpr Rect kFirst{0, 0, 1280, 720};
constexpr std::uint32_t kGreen = 0x00ff00;
constexpr std::uint32_t kBlue = 0x0000ff;

/// Whether both monitors show that colour somewhere clear of windows.
bool bothShow(CoverDesk& covers, std::uint32_t colour) {
  return covers.desk().screen().pixel(200, 600) == colour &&
         covers.desk().screen().pixel(1280 + 700, 500) == colour;
}

/// Whether each monitor shows what the desktop draws there, icons aside, and the windows above.
bool showsTheDesktop(CoverDesk& covers) {
  if (!covers.hasRootPicture()) return covers.looksUncovered();
  return std::ranges::all_of(covers.desk().server().monitors(), [&](const Rect& monitor) {
    Image seen = covers.desk().screen().area(monitor);
    const Image drawn = covers.rootPicture(monitor);
    if (seen.pixels.size() != drawn.pixels.size()) return false;
    for (int y = 0; y < seen.height; ++y) {
      for (int x = 0; x < seen.width; ++x) {
        const bool isWindow = Rect{400, 150, 500, 350}.contains(monitor.x + x, monitor.y + y);
        if (!isWindow && seen.at(x, y) != drawn.at(x, y)) return false;
      }
    }
    return true;
  });
}

TEST(CoverPicture, TheBareRootsColourIsCopiedWhereNothingElseIsKnown) {
  CoverDesk covers({.windowManager = WindowManager::Openbox});
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  EXPECT_EQ(covers.faultAfterAWhile(), "");
}

TEST(CoverPicture, WithoutAWindowManagerTheCoverIsAboveTheIconsAndBelowTheWindows) {
  CoverDesk covers({.icons = DesktopIcons::Pcmanfm});
  ASSERT_TRUE(covers.icons().has_value());
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  EXPECT_EQ(covers.faultAfterAWhile(), "");

  covers.desk().startWindowManager(WindowManager::Openbox);
  const auto isManaged = [](const WindowInfo& cover) { return cover.managed; };
  EXPECT_TRUE(covers.desk().until([&] {
    return covers.everyMonitorIsCovered() && std::ranges::all_of(covers.covers(), isManaged);
  })) << "a window manager that comes takes over";
}

TEST(CoverPicture, WhatTheDesktopWasToldIsDrawnUntilItDrawsItItself) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4, .icons = DesktopIcons::Xfdesktop});
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  const std::filesystem::path picture = covers.desk().home().home() / "blue.png";
  harness::writePng(Image{8, 8, std::vector<std::uint32_t>(64, kBlue)}, picture);
  covers.desk().icons().freeze();
  covers.changeWallpaper(picture);
  const auto isBlue = [&] { return covers.desk().screen().pixel(200, 600) == kBlue; };
  EXPECT_TRUE(covers.desk().until(isBlue)) << "told, not drawn";
  covers.desk().icons().thaw();
  EXPECT_TRUE(covers.desk().until([&] { return showsTheDesktop(covers); })) << "drawn";
  EXPECT_TRUE(isBlue());
}

TEST(CoverPicture, WhatIsSeenCountsAndNotWhatTheDesktopWasTold) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4, .icons = DesktopIcons::Xfdesktop});
  const std::uint32_t seen = covers.desk().screen().pixel(200, 600);
  const std::filesystem::path picture = covers.desk().home().home() / "blue.png";
  harness::writePng(Image{8, 8, std::vector<std::uint32_t>(64, kBlue)}, picture);
  covers.desk().icons().freeze();
  covers.changeWallpaper(picture);
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  EXPECT_EQ(covers.desk().screen().pixel(200, 600), seen);
  covers.desk().icons().thaw();
  EXPECT_TRUE(covers.desk().until([&] { return covers.desk().screen().pixel(200, 600) == kBlue; }));
}

TEST(CoverPicture, WhatSomebodyPutsOnTheRootIsFollowed) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4});
  covers.setRootPicture(kGreen);
  ASSERT_TRUE(covers.desk().until([&] { return bothShow(covers, kGreen); }));
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  covers.setRootPicture(kBlue);
  EXPECT_TRUE(covers.desk().until([&] { return bothShow(covers, kBlue); }));
}

TEST(CoverPicture, WhatNobodyKnowsIsNotWaitedFor) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4, .swaps = true});
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  ASSERT_TRUE(covers.desk().until([&] { return bothShow(covers, kBlue); }));
  ASSERT_TRUE(covers.desk()
                  .run({"hsetroot", "-add", "#ff0000", "-add", "#00ff00", "-gradient", "0"})
                  .succeeded());
  EXPECT_TRUE(covers.desk().until([&] { return showsTheDesktop(covers); }))
      << "the user's own, of which no file is known, and no flat colour";
}

TEST(CoverPicture, APatternOnTheBareRootIsCopied) {
  CoverDesk covers({.windowManager = WindowManager::Openbox, .pattern = true});
  // A clock, which is no desktop.
  (void)covers.desk().openDesktopWindow({1000, 40, 200, 120}, kBlue);
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  EXPECT_EQ(covers.faultAfterAWhile(), "");
}

TEST(CoverPicture, CoversGoAndComeBack) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4, .icons = DesktopIcons::Xfdesktop});
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  ASSERT_EQ(covers.faultAfterAWhile(), "");
  covers.toggle();
  EXPECT_TRUE(covers.desk().until([&] { return covers.covers().empty(); }));
  EXPECT_TRUE(covers.desk().until([&] { return !covers.fault().empty(); })) << "the icons show";
  covers.toggle();
  EXPECT_TRUE(covers.desk().until([&] { return covers.everyMonitorIsCovered(); }));
  EXPECT_EQ(covers.faultAfterAWhile(), "");
  covers.program().kill();
  EXPECT_TRUE(covers.desk().until([&] { return covers.covers().empty(); }))
      << "covers end with their program";
}

/// Looks at the same points over and over, as fast as the server answers.
class Watcher {
 public:
  explicit Watcher(CoverDesk& covers) : covers_(covers), before_(look()) {}

  /// Until `fact` holds and a little longer. The number of looks at which something was another
  /// colour than at first.
  int unlikeLooks(const std::function<bool()>& fact) {
    int unlike = 0;
    const auto isSame = [&] {
      if (!isAsBefore()) ++unlike;
      return fact();
    };
    EXPECT_TRUE(covers_.desk().until(isSame));
    const auto end = std::chrono::steady_clock::now() + 500ms;
    while (std::chrono::steady_clock::now() < end) {
      if (!isAsBefore()) ++unlike;
    }
    return unlike;
  }

 private:
  [[nodiscard]] bool isAsBefore() const {
    return std::ranges::equal(look(), before_, [this](std::uint32_t a, std::uint32_t b) {
      return covers_.isAlike(a, b);
    });
  }
  [[nodiscard]] std::vector<std::uint32_t> look() const {
    std::vector<std::uint32_t> colours;
    for (const Rect& monitor : {Rect{0, 0, 1280, 720}, Rect{1280, 0, 1024, 600}}) {
      for (const int part : {1, 5, 9}) {
        colours.push_back(covers_.desk().screen().pixel(monitor.x + monitor.width * part / 10,
                                                        monitor.bottom() - 8 * part));
      }
    }
    return colours;
  }

  CoverDesk& covers_;
  std::vector<std::uint32_t> before_;
};

TEST(CoverPicture, NothingFlashesWhileCoversComeAndGo) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4, .icons = DesktopIcons::Xfdesktop});
  ASSERT_NO_FATAL_FAILURE(covers.launch());
  Watcher watcher(covers);
  covers.toggle();
  EXPECT_EQ(watcher.unlikeLooks([&] { return covers.everyMonitorIsCovered(); }), 0);
  covers.toggle();
  EXPECT_EQ(watcher.unlikeLooks([&] { return covers.covers().empty(); }), 0);
}

TEST(CoverPicture, AnotherPrimaryMonitorDisturbsNothing) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4, .icons = DesktopIcons::Xfdesktop});
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  ASSERT_EQ(covers.faultAfterAWhile(), "");
  Watcher watcher(covers);
  const xcb_window_t before = covers.coverOf(kFirst);
  covers.swapPrimary();
  EXPECT_EQ(watcher.unlikeLooks([&] { return covers.coverOf(kFirst) != before; }), 0);
  EXPECT_TRUE(covers.everyMonitorIsCovered());
  EXPECT_TRUE(showsTheDesktop(covers));
}

/// With a compositor and without.
class CoverWallpaper : public testing::TestWithParam<bool> {};

TEST_P(CoverWallpaper, ANewOneIsFollowed) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4,
                    .icons = DesktopIcons::Xfdesktop,
                    .composited = GetParam()});
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  const std::uint32_t before = covers.desk().screen().pixel(200, 600);
  covers.changeWallpaper(covers.desk().home().home() / "right.png");
  ASSERT_TRUE(covers.desk().until([&] { return covers.desk().screen().pixel(200, 600) != before; }))
      << covers.program().errorOutput();
  EXPECT_TRUE(covers.desk().until([&] { return showsTheDesktop(covers); }));
}

INSTANTIATE_TEST_SUITE_P(On, CoverWallpaper, testing::Bool(), [](const auto& row) {
  return row.param ? "Composited" : "NotComposited";
});

/// With a window manager and without.
class CoverMonitors : public testing::TestWithParam<WindowManager> {};

TEST_P(CoverMonitors, NoCoverOfAnEarlierPlaceLiesOverTheLiveOneWhenTheFirstMonitorGoes) {
  CoverDesk covers({.windowManager = GetParam()});
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  const std::vector<Rect> both = covers.desk().server().monitors();
  const xcb_window_t before = covers.coverOf(kFirst);
  covers.swapPrimary();
  ASSERT_TRUE(covers.desk().until([&] { return covers.coverOf(kFirst) != before; }));
  covers.desk().server().setMonitors({both[0]});
  EXPECT_TRUE(covers.desk().until([&] { return covers.everyMonitorIsCovered(); }));
  covers.setRootPicture(kBlue);
  EXPECT_TRUE(covers.desk().until([&] { return covers.desk().screen().pixel(200, 600) == kBlue; }))
      << "another picture, of which the live cover hears";
}

INSTANTIATE_TEST_SUITE_P(On, CoverMonitors,
                         testing::Values(WindowManager::None, WindowManager::Openbox),
                         [](const auto& row) {
                           return row.param == WindowManager::None ? "NoWindowManager" : "Openbox";
                         });

TEST(CoverPicture, CoversFollowTheMonitors) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4, .icons = DesktopIcons::Xfdesktop});
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  const std::vector<std::vector<Rect>> layouts{
      {{0, 0, 1280, 720}},                                             // one gone
      {{0, 0, 1280, 720}, {1280, 0, 800, 600}},                        // back, in another size
      {{0, 0, 1280, 720}, {1280, 0, 800, 600}, {2080, 0, 640, 480}}};  // and one more
  for (const auto& layout : layouts) {
    covers.desk().server().setMonitors(layout);
    EXPECT_TRUE(covers.desk().until([&] {
      return covers.everyMonitorIsCovered() && showsTheDesktop(covers);
    })) << layout.size()
        << " monitors";
  }
}

}  // namespace
}  // namespace cover_test
