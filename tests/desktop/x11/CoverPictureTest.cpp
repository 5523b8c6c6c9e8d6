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
constexpr std::uint32_t kBlue = 0x0000ff;

/// Whether both monitors show that colour somewhere clear of windows.
bool bothShow(CoverDesk& covers, std::uint32_t colour) {
  return covers.desk().screen().pixel(200, 600) == colour &&
         covers.desk().screen().pixel(1280 + 700, 500) == colour;
}

/// A picture on the root window of which nobody knows a file.
void paintTheRoot(CoverDesk& covers) {
  ASSERT_TRUE(covers.desk()
                  .run({"hsetroot", "-add", "#ff0000", "-add", "#00ff00", "-gradient", "0"})
                  .succeeded());
}

/// Whether each monitor shows its part of that, but for the window above.
bool showsTheRootPicture(CoverDesk& covers) {
  const harness::XConnection& x = covers.desk().x();
  const auto pixmap = x.number(x.root(), "_XROOTPMAP_ID");
  return pixmap && std::ranges::all_of(covers.desk().server().monitors(), [&](const Rect& monitor) {
           const auto other = changedArea(covers.desk().screen().area(monitor, *pixmap),
                                          covers.desk().screen().area(monitor));
           return !other || (monitor.x == 0 && Rect{400, 150, 500, 350}.contains(*other));
         });
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

/// Whose desktop, or the settings that it reads, tells of a change before the new picture is drawn.
class CoverOver : public testing::TestWithParam<DesktopIcons> {};

INSTANTIATE_TEST_SUITE_P(, CoverOver,
                         testing::Values(DesktopIcons::Xfdesktop, DesktopIcons::Caja,
                                         DesktopIcons::PcmanfmQt, DesktopIcons::Pcmanfm),
                         testing::PrintToStringParamName());

TEST_P(CoverOver, WhatTheDesktopWasToldIsDrawnUntilItDrawsItItself) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4, .icons = GetParam()});
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  ASSERT_EQ(covers.faultAfterAWhile(), "");
  covers.desk().icons().freeze();
  covers.changeWallpaper(covers.bluePicture());
  EXPECT_TRUE(covers.desk().until([&] { return covers.desk().screen().pixel(200, 600) == kBlue; }));
}

// MATE, as Xfce's desktop no longer paints the root window since 4.20.
TEST(CoverPicture, WhatIsSeenCountsAndNotWhatTheDesktopWasTold) {
  CoverDesk covers({.windowManager = WindowManager::Marco, .icons = DesktopIcons::Caja});
  const std::uint32_t seen = covers.desk().screen().pixel(200, 600);
  covers.desk().icons().freeze();
  covers.changeWallpaper(covers.bluePicture());
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  EXPECT_EQ(covers.desk().screen().pixel(200, 600), seen);
  covers.desk().icons().thaw();
  EXPECT_TRUE(covers.desk().until([&] { return covers.desk().screen().pixel(200, 600) == kBlue; }));
}

TEST(CoverPicture, WhatNobodyKnowsIsNotWaitedFor) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4, .swaps = true});
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  ASSERT_TRUE(covers.desk().until([&] { return bothShow(covers, kBlue); }));
  ASSERT_NO_FATAL_FAILURE(paintTheRoot(covers));
  EXPECT_TRUE(covers.desk().until([&] { return showsTheRootPicture(covers); }));
}

TEST(CoverPicture, APatternOnTheBareRootIsCopied) {
  CoverDesk covers({.windowManager = WindowManager::Openbox, .pattern = true});
  // A clock, which is no desktop.
  covers.desk().openDesktopWindow({1000, 40, 200, 120}, kBlue);
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  EXPECT_EQ(covers.faultAfterAWhile(), "");
}

TEST(CoverPicture, WhatShowsThroughTheIconsIsNotTakenForBlack) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4});
  ASSERT_NO_FATAL_FAILURE(paintTheRoot(covers));
  const std::vector<Rect> monitors = covers.desk().server().monitors();
  for (const Rect& monitor : monitors) covers.openIconWindow(monitor);
  ASSERT_TRUE(covers.desk().until([&] { return covers.iconWindows().size() == monitors.size(); }));
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  EXPECT_TRUE(covers.desk().until([&] { return showsTheRootPicture(covers); }));
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
  covers.launch();
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
  EXPECT_EQ(covers.faultAfterAWhile(), "");
}

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
  ASSERT_TRUE(covers.desk().run({"hsetroot", "-solid", "#0000ff"}).succeeded());
  EXPECT_TRUE(covers.desk().until([&] { return covers.desk().screen().pixel(200, 600) == kBlue; }))
      << "another picture, of which the live cover hears";
}

INSTANTIATE_TEST_SUITE_P(On, CoverMonitors,
                         testing::Values(WindowManager::None, WindowManager::Openbox),
                         testing::PrintToStringParamName());

TEST(CoverPicture, CoversFollowTheMonitors) {
  CoverDesk covers({.windowManager = WindowManager::Openbox});
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  const std::vector<std::vector<Rect>> layouts{
      {{0, 0, 1280, 720}},                                             // one gone
      {{0, 0, 1280, 720}, {1280, 0, 800, 600}},                        // back, in another size
      {{0, 0, 1280, 720}, {1280, 0, 800, 600}, {2080, 0, 640, 480}}};  // and one more
  for (const auto& layout : layouts) {
    covers.desk().server().setMonitors(layout);
    ASSERT_NO_FATAL_FAILURE(paintTheRoot(covers));
    EXPECT_TRUE(covers.desk().until([&] {
      return covers.everyMonitorIsCovered() && showsTheRootPicture(covers);
    })) << layout.size()
        << " monitors";
  }
}

}  // namespace
}  // namespace cover_test
