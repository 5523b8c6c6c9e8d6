#include "desktop/linux/ui/OutsideActs.h"

#include <gtest/gtest.h>

#include "desktop/ui/UiTest.h"

namespace linux_desktop {
namespace {

using namespace std::chrono_literals;

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

TEST_F(OutsideActsTest, PressOnAPanelWaitsForTheStatusItem) {
  acts.pressedOnPanel();
  acts.lostKeyboard();
  EXPECT_EQ(reports, 0);
  acts.itemActivated();
  acts.lostKeyboard();
  letTimePass();
  EXPECT_EQ(reports, 0);
}

TEST_F(OutsideActsTest, PressOnAPanelBesideTheItemCountsOnce) {
  acts.pressedOnPanel();
  acts.lostKeyboard();
  acts.pressedOnPanel();
  EXPECT_TRUE(until([this] { return reports == 1; }));
  letTimePass();
  EXPECT_EQ(reports, 1);
}

TEST_F(OutsideActsTest, ItemThatSpeaksBeforeItsPressIsSeenIsUnderstood) {
  acts.itemActivated();
  acts.pressedOnPanel();
  letTimePass();
  EXPECT_EQ(reports, 0);
  time += 5s;
  acts.pressedOnPanel();
  EXPECT_TRUE(until([this] { return reports == 1; }));
}

}  // namespace
}  // namespace linux_desktop
