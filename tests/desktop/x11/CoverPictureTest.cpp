// What a cover shows, and when.

#include <gmock/gmock.h>

#include <algorithm>

#include "desktop/x11/CoverDesk.h"

namespace cover_test {
namespace {

using namespace std::chrono_literals;

constexpr std::uint32_t kBlue = 0x0000ff;

/// The colours of points in three places of each monitor.
std::vector<std::uint32_t> look(const CoverDesk& covers) {
  std::vector<std::uint32_t> colours;
  for (const Rect& monitor : {Rect{0, 0, 1280, 720}, Rect{1280, 0, 1024, 600}}) {
    for (const int part : {1, 5, 9}) {
      colours.push_back(covers.screen().pixel(monitor.x + monitor.width * part / 10,
                                              monitor.bottom() - 8 * part));
    }
  }
  return colours;
}

/// A picture on the root window of which nobody knows a file.
void paintTheRoot(CoverDesk& covers) {
  covers.mustRun({"hsetroot", "-add", "#ff0000", "-add", "#00ff00", "-gradient", "0"});
}

/// Whether each monitor shows its part of that, but for the window above.
bool showsTheRootPicture(CoverDesk& covers) {
  const harness::XConnection& x = covers.x();
  const auto pixmap = x.number(x.root(), "_XROOTPMAP_ID");
  return pixmap && std::ranges::all_of(covers.server().monitors(), [&](const Rect& monitor) {
           const auto other =
               changedArea(imageOf(covers.x(), *pixmap, monitor), covers.screen().area(monitor));
           return !other || (monitor.x == 0 && Rect{400, 150, 500, 350}.contains(*other));
         });
}

TEST(CoverPicture, WithoutAWindowManagerTheCoverIsAboveTheIconsAndBelowTheWindows) {
  CoverDesk covers({.icons = DesktopIcons::Pcmanfm});
  ASSERT_TRUE(covers.iconArea.has_value());
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  EXPECT_EQ(covers.faultAfterAWhile(), "");

  covers.startWindowManager(WindowManager::Openbox);
  const auto isManaged = [](const WindowInfo& cover) { return cover.managed; };
  EXPECT_TRUE(covers.until([&] {
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
  covers.icons().freeze();
  covers.changeWallpaper(covers.bluePicture());
  EXPECT_TRUE(covers.until([&] { return covers.screen().pixel(200, 600) == kBlue; }));
}

// MATE, as Xfce's desktop no longer paints the root window since 4.20.
TEST(CoverPicture, WhatIsSeenCountsAndNotWhatTheDesktopWasTold) {
  CoverDesk covers({.windowManager = WindowManager::Marco, .icons = DesktopIcons::Caja});
  const std::uint32_t seen = covers.screen().pixel(200, 600);
  covers.icons().freeze();
  covers.changeWallpaper(covers.bluePicture());
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  EXPECT_EQ(covers.screen().pixel(200, 600), seen);
  covers.icons().thaw();
  EXPECT_TRUE(covers.until([&] { return covers.screen().pixel(200, 600) == kBlue; }));
}

TEST(CoverPicture, WhatNobodyKnowsIsNotWaitedFor) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4, .swaps = true});
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  ASSERT_TRUE(covers.until([&] {
    return std::ranges::all_of(look(covers), [](auto colour) { return colour == kBlue; });
  }));
  paintTheRoot(covers);
  EXPECT_TRUE(covers.until([&] { return showsTheRootPicture(covers); }));
}

TEST(CoverPicture, APatternOnTheBareRootIsCopied) {
  CoverDesk covers({.windowManager = WindowManager::Openbox, .pattern = true});
  // A clock, which is no desktop.
  covers.openDesktopWindow({1000, 40, 200, 120}, kBlue);
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  EXPECT_EQ(covers.faultAfterAWhile(), "");
}

TEST(CoverPicture, WhatShowsThroughTheIconsIsNotTakenForBlack) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4});
  paintTheRoot(covers);
  const std::vector<Rect> monitors = covers.server().monitors();
  for (const Rect& monitor : monitors) covers.openIconWindow(monitor);
  ASSERT_TRUE(covers.until([&] { return covers.iconWindows().size() == monitors.size(); }));
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  EXPECT_TRUE(covers.until([&] { return showsTheRootPicture(covers); }));
}

/// Acts, and looks over and over until `fact` holds and a little longer. At how many looks
/// something was another colour than before.
int flashes(CoverDesk& covers, void (*act)(CoverDesk&), const std::function<bool()>& fact) {
  using Clock = std::chrono::steady_clock;
  const std::vector<std::uint32_t> before = look(covers);
  const auto isAlike = [&](auto a, auto b) { return covers.isAlike(a, b); };
  int count = 0;
  std::optional<Clock::time_point> end;
  act(covers);
  EXPECT_TRUE(covers.until([&] {
    if (!std::ranges::equal(look(covers), before, isAlike)) ++count;
    if (!end && fact()) end = Clock::now() + 500ms;
    return end && Clock::now() > *end;
  }));
  return count;
}

TEST(CoverPicture, NothingFlashesWhileCoversComeAndGo) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4, .icons = DesktopIcons::Xfdesktop});
  covers.launch();
  const auto toggle = [](CoverDesk& desk) { desk.toggle(); };
  EXPECT_EQ(flashes(covers, toggle, [&] { return covers.everyMonitorIsCovered(); }), 0);
  EXPECT_EQ(flashes(covers, toggle, [&] { return covers.covers().empty(); }), 0);
}

TEST(CoverPicture, AnotherPrimaryMonitorDisturbsNothing) {
  CoverDesk covers({.windowManager = WindowManager::Xfwm4, .icons = DesktopIcons::Xfdesktop});
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  ASSERT_EQ(covers.faultAfterAWhile(), "");
  const xcb_window_t before = covers.firstCover();
  const auto swap = [](CoverDesk& desk) { desk.makePrimary(1); };
  EXPECT_EQ(flashes(covers, swap, [&] { return covers.firstCover() != before; }), 0);
  EXPECT_TRUE(covers.everyMonitorIsCovered());
  EXPECT_EQ(covers.faultAfterAWhile(), "");
}

class CoverMonitors : public testing::TestWithParam<WindowManager> {};

INSTANTIATE_TEST_SUITE_P(On, CoverMonitors,
                         testing::Values(WindowManager::None, WindowManager::Openbox),
                         testing::PrintToStringParamName());

TEST_P(CoverMonitors, AreFollowedAndNoCoverOfAnEarlierPlaceLiesOverALiveOne) {
  CoverDesk covers({.windowManager = GetParam()});
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  const xcb_window_t before = covers.firstCover();
  covers.makePrimary(1);
  ASSERT_TRUE(covers.until([&] { return covers.firstCover() != before; }));
  const std::vector<std::vector<Rect>> layouts{
      {{0, 0, 1280, 720}},                                             // one gone
      {{0, 0, 1280, 720}, {1280, 0, 800, 600}},                        // back, in another size
      {{0, 0, 1280, 720}, {1280, 0, 800, 600}, {2080, 0, 640, 480}}};  // and one more
  for (const auto& layout : layouts) {
    covers.server().setMonitors(layout);
    EXPECT_TRUE(covers.until([&] { return covers.everyMonitorIsCovered(); }));
    paintTheRoot(covers);
    EXPECT_TRUE(covers.until([&] { return showsTheRootPicture(covers); })) << layout.size();
    covers.makePrimary(0);
  }
}

}  // namespace
}  // namespace cover_test
