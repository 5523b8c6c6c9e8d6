#include "desktop/linux/ui/PopoverPlacement.h"

#include <gtest/gtest.h>

#include <array>

#include "desktop/linux/tray/TrayAnchor.h"
#include "desktop/linux/ui/OutsideActs.h"
#include "desktop/ui/UiTest.h"

namespace linux_desktop {
namespace {

using namespace std::chrono_literals;

constexpr QSize kSize{300, 400};
constexpr QRect kMonitor{0, 0, 1280, 720};
constexpr QRect kSecond{1280, 0, 1024, 600};

const DesktopPanel kTop{{0, 0, 1280, 30}, {0, 0, 1280, 30}};
const DesktopPanel kBottom{{0, 680, 1280, 40}, {0, 680, 1280, 40}};
const DesktopPanel kLeft{{0, 0, 48, 720}, {0, 0, 48, 720}};
const DesktopPanel kRight{{1240, 0, 40, 720}, {1240, 0, 40, 720}};
const DesktopPanel kHiding{{0, 690, 1280, 30}, {}};
// Its strut speaks of the whole screen, down to the taller first monitor's lower edge.
const DesktopPanel kSecondBottom{{1280, 570, 1024, 30}, {1280, 570, 1024, 150}};
const DesktopPanel kSecondLeft{{1280, 0, 40, 600}, {0, 0, 1320, 600}};

struct Row {
  const char* name;
  Anchor anchor;
  QRect monitor;
  std::vector<DesktopPanel> panels;
  QPoint expected;
};

TEST(PopoverPlacementTest, StandsBesideThePanelAtTheItemAndInsideTheMonitor) {
  const std::array rows{
      Row{"top, at the right end", {{1270, 15}, {}}, kMonitor, {kTop}, {976, 34}},
      Row{"left, at the lower end", {{20, 715}, {}}, kMonitor, {kLeft}, {52, 316}},
      Row{"right", {{1260, 20}, {}}, kMonitor, {kRight}, {936, 4}},
      Row{"the lower of two panels", {{1270, 700}, {}}, kMonitor, {kTop, kBottom}, {976, 276}},
      Row{"a corner of two panels", {{20, 700}, {}}, kMonitor, {kBottom, kRight}, {4, 276}},
      Row{"a panel that hides itself", {{640, 705}, {}}, kMonitor, {kHiding}, {490, 286}},
      Row{"the tray knows its panel, its window is not listed",
          {{1100, 10}, QRect(0, 0, 1280, 24)},
          kMonitor,
          {},
          {950, 28}},
      Row{"nothing known: the nearest edge", {{1200, 5}, {}}, kMonitor, {}, {976, 4}},
      Row{"a shorter monitor", {{2290, 580}, {}}, kSecond, {kTop, kSecondBottom}, {2000, 166}},
  };
  for (const Row& row : rows) {
    const QRect placed = placePopover(row.anchor, kSize, row.monitor, row.panels);
    EXPECT_EQ(placed, QRect(row.expected, kSize))
        << row.name << ": " << placed.x() << ", " << placed.y();
    EXPECT_TRUE(row.monitor.contains(placed)) << row.name;
  }
}

TEST(PopoverPlacementTest, WhatIsTooLargeBeginsAtTheUpperLeft) {
  const QRect placed = placePopover({{600, 700}, {}}, {2000, 900}, kMonitor, {kBottom});
  EXPECT_EQ(placed.topLeft(), QPoint(4, 4));
}

TEST(PopoverPlacementTest, APanelTakesRoomFromItsOwnMonitorOnly) {
  EXPECT_EQ(usableArea(kMonitor, {kSecondLeft, kSecondBottom}), kMonitor);
  EXPECT_EQ(usableArea(kSecond, {kSecondLeft}), QRect(1320, 0, 984, 600));
  EXPECT_EQ(usableArea(kMonitor, {kTop, kLeft, kRight, kBottom}), QRect(48, 30, 1192, 650));
}

/// Knows where the panel is.
class WindowsWithAPanel final : public OwnWindows {
 public:
  [[nodiscard]] std::vector<DesktopPanel> panels() override { return {kBottom}; }
};

TEST(PopoverPlacementTest, APlaceThatATrayTellsIsTheIconsOnlyIfItIsOnAPanel) {
  WindowsWithAPanel windows;
  TrayAnchor anchor(windows);
  anchor.rememberTold({300, 690});
  EXPECT_EQ(anchor.anchor().point, QPoint(300, 690));
  anchor.rememberTold({300, 10});  // of the panel's own corner
  EXPECT_EQ(anchor.anchor().panelGeometry, kBottom.geometry);
  EXPECT_GT(anchor.anchor().point.x(), 1200) << "where panels have their tray";
}

// --- What makes it close ---

class OutsideActsTest : public ui_test::UiTest {
 protected:
  /// Longer than any wait of the class.
  void letTimePass() { loop.sleep(OutsideActs::kItemPatience + 50ms); }

  platform::MonotonicTime time{};
  int reports = 0;
  OutsideActs acts{[this] { return time; }, [this] { ++reports; }};
};

TEST_F(OutsideActsTest, PressAndTheLossOfTheKeyboardThatFollowsAreOneAct) {
  acts.pressedElsewhere();
  time += 450ms;
  acts.lostKeyboard();
  EXPECT_EQ(reports, 1);
  time += 2s;
  acts.lostKeyboard();
  EXPECT_EQ(reports, 2);
}

TEST_F(OutsideActsTest, PressOnAPanelBesideTheItemCountsOnce) {
  acts.pressedOnPanel();
  acts.lostKeyboard();
  acts.pressedOnPanel();
  EXPECT_TRUE(until([this] { return reports == 1; }));
  letTimePass();
  EXPECT_EQ(reports, 1);
}

TEST_F(OutsideActsTest, ItemThatSpeaksBeforeOrAfterItsPressIsSeenIsUnderstood) {
  acts.itemActivated();
  acts.pressedOnPanel();
  letTimePass();
  EXPECT_EQ(reports, 0);
  time += 5s;
  acts.pressedOnPanel();
  acts.lostKeyboard();
  EXPECT_EQ(reports, 0);
  acts.itemActivated();
  letTimePass();
  EXPECT_EQ(reports, 0);
}

}  // namespace
}  // namespace linux_desktop
