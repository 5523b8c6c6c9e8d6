// Covers stay above the icons and below the windows, whatever happens on the desktop.

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

#include "desktop/x11/CoverDesk.h"

namespace cover_test {
namespace {

using testing::IsSupersetOf;

struct Surroundings {
  std::string name;
  WindowManager windowManager;
  DesktopIcons icons;
  bool composited = true;
};

void PrintTo(const Surroundings& value, std::ostream* out) {
  *out << value.name;
}

std::vector<Surroundings> allSurroundings() {
  return {{"XfceWithCompositor", WindowManager::Xfwm4, DesktopIcons::Xfdesktop},
          {"XfceWithoutCompositor", WindowManager::Xfwm4, DesktopIcons::Xfdesktop, false},
          {"Mate", WindowManager::Marco, DesktopIcons::Caja},
          {"Openbox", WindowManager::Openbox, DesktopIcons::Pcmanfm},
          {"OpenboxWithQtIcons", WindowManager::Openbox, DesktopIcons::PcmanfmQt},
          {"Icewm", WindowManager::Icewm, DesktopIcons::Pcmanfm}};
}

class CoverStand : public testing::TestWithParam<Surroundings> {
 public:
  CoverDesk covers{{.windowManager = GetParam().windowManager,
                    .icons = GetParam().icons,
                    .composited = GetParam().composited}};
  harness::XDesk& desk = covers;

  void SetUp() override {
    ASSERT_TRUE(covers.iconArea.has_value());
    ASSERT_NE(covers.fault(), "") << "the icons show while there is no cover";
    ASSERT_NO_FATAL_FAILURE(covers.startCovered());
    ASSERT_EQ(covers.faultAfterAWhile(), "");
  }
};

TEST_P(CoverStand, CoversAreNoWindowsOfTheUserAndSwallowClicks) {
  for (const WindowInfo& cover : covers.covers()) {
    EXPECT_EQ(cover.type, "DESKTOP");
    EXPECT_THAT(cover.states, IsSupersetOf({"BELOW", "SKIP_TASKBAR", "SKIP_PAGER"}));
    EXPECT_NE(desk.windows().active(), cover.id);
  }
  ASSERT_TRUE(desk.activate(covers.front.id));
  const std::size_t windows = desk.windows().all().size();
  for (const auto button : {harness::Button::Left, harness::Button::Right}) {
    desk.input().click(100, 600, button);
    desk.input().click(1280 + 400, 300, button);
    desk.input().click(covers.iconArea->centreX(), covers.iconArea->centreY(), button);
  }
  EXPECT_EQ(covers.faultAfterAWhile(), "");
  EXPECT_EQ(desk.windows().active(), covers.front.id);
  EXPECT_EQ(desk.windows().all().size(), windows);
}

TEST_P(CoverStand, IconsThatAreRaisedComeNoHigherThanTheCover) {
  for (const WindowInfo& icons : covers.iconWindows()) {
    desk.windows().activate(icons.id);
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(desk.x().get(), icons.id, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    desk.x().askWindowManager(icons.id, "_NET_RESTACK_WINDOW", {2, 0, XCB_STACK_MODE_ABOVE});
  }
  (void)desk.settled();
  EXPECT_EQ(covers.faultAfterAWhile(), "");
  desk.windows().activate(covers.front.id);
  EXPECT_EQ(covers.faultAfterAWhile(), "") << "with the window active again";
}

TEST_P(CoverStand, WorkspacesAndAShownDesktopKeepTheIconsCovered) {
  covers.setOnRoot("_NET_CURRENT_DESKTOP", 1);
  EXPECT_EQ(covers.faultAfterAWhile(false), "") << "on the other workspace";
  covers.setOnRoot("_NET_CURRENT_DESKTOP", 0);
  EXPECT_EQ(covers.faultAfterAWhile(), "") << "and back";
  covers.setOnRoot("_NET_SHOWING_DESKTOP", 1);
  EXPECT_EQ(covers.faultAfterAWhile(false), "") << "while the desktop is shown";
  covers.setOnRoot("_NET_SHOWING_DESKTOP", 0);
  EXPECT_EQ(covers.faultAfterAWhile(), "") << "and the windows again";
}

TEST_P(CoverStand, IconsThatStartAnewComeUnderTheCover) {
  const std::size_t count = covers.iconWindows().size();
  desk.startIcons(DesktopIcons::None);
  ASSERT_TRUE(desk.until([&] { return covers.iconWindows().empty(); }));
  desk.startIcons(GetParam().icons);
  ASSERT_TRUE(desk.until([&] { return covers.iconWindows().size() == count; }));
  (void)desk.settled();
  EXPECT_EQ(covers.faultAfterAWhile(), "");
}

TEST_P(CoverStand, AnotherWindowManagerFindsTheCoverWhereItBelongs) {
  desk.startWindowManager(GetParam().windowManager);
  ASSERT_TRUE(desk.until([&] { return covers.everyMonitorIsCovered(); }));
  EXPECT_EQ(covers.faultAfterAWhile(), "");
}

INSTANTIATE_TEST_SUITE_P(On, CoverStand, testing::ValuesIn(allSurroundings()),
                         [](const auto& row) { return row.param.name; });

// Which paints desktop windows in the order of their coming.
TEST(CoverOnMuffin, ComesAnewAfterIconsThatComeAnew) {
  CoverDesk covers({.windowManager = WindowManager::Openbox});
  const harness::XConnection& x = covers.x();
  const std::string name = "Mutter (Muffin)";
  xcb_change_property(x.get(), XCB_PROP_MODE_REPLACE,
                      x.number(x.root(), "_NET_SUPPORTING_WM_CHECK").value(),
                      x.atom("_NET_WM_NAME"), x.atom("UTF8_STRING"), 8,
                      static_cast<std::uint32_t>(name.size()), name.data());
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  const Rect first = covers.server().monitors().front();
  for (int time = 0; time < 2; ++time) {
    const xcb_window_t before = covers.firstCover();
    covers.openIconWindow(first);
    EXPECT_TRUE(covers.until([&] {
      return covers.everyMonitorIsCovered() && covers.firstCover() != before;
    })) << time;
  }
}

// Which puts new desktop windows where it likes, and above its bars what asks to be below others.
TEST(CoverOnAwesome, StandsOnItsMonitorBelowTheBar) {
  CoverDesk covers({});
  harness::XDesk& desk = covers;
  const std::vector<Rect> monitors = desk.server().monitors();
  const auto awesome = desk.start({"awesome"});
  ASSERT_TRUE(desk.until([&] { return desk.panelAreas().size() == monitors.size(); }))
      << awesome->errorOutput();
  // Without a compositor these are black, and so are their covers.
  for (const Rect& monitor : monitors) covers.openIconWindow(monitor);
  ASSERT_NO_FATAL_FAILURE(covers.startCovered());
  for (const Rect& bar : desk.panelAreas()) {
    const auto isBlack = [](const Image& image) {
      return std::ranges::count(image.pixels, 0U) == std::ssize(image.pixels);
    };
    EXPECT_TRUE(desk.until([&] {
      return isBlack(desk.screen().area({bar.x + 10, bar.bottom() + 10, 200, 20}));
    })) << bar.x;
    EXPECT_FALSE(isBlack(desk.screen().area(bar))) << bar.x;
  }
}

}  // namespace
}  // namespace cover_test
