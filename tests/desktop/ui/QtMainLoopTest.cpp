#include "desktop/linux/loop/QtMainLoop.h"

#include <gtest/gtest.h>

#include "desktop/ui/UiTest.h"

namespace linux_desktop {
namespace {

using namespace std::chrono_literals;
using Order = std::vector<std::string>;

class QtMainLoopTest : public ui_test::UiTest {
 protected:
  void note(std::string what) { order.push_back(std::move(what)); }
  Order order;
};

TEST_F(QtMainLoopTest, SleepLastsAndLetsEventsIn) {
  const auto timer = loop.startTimer(5ms, [this] { note("timer"); });
  loop.post([this] { note("posted"); });
  const auto start = loop.now();
  loop.sleep(30ms);
  EXPECT_GE(loop.now() - start, 30ms);
  EXPECT_EQ(order, (Order{"posted", "timer"}));
}

TEST_F(QtMainLoopTest, StopDuringASleepEndsTheRunAfterIt) {
  loop.post([this] {
    loop.post([this] { loop.stop(); });
    const auto start = loop.now();
    loop.sleep(20ms);
    EXPECT_GE(loop.now() - start, 20ms);
    note("slept");
  });
  loop.run();
  EXPECT_EQ(order, Order{"slept"});
}

}  // namespace
}  // namespace linux_desktop
