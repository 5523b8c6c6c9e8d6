#include "desktop/linux/loop/QtMainLoop.h"

#include <gtest/gtest.h>

#include <thread>

#include "desktop/ui/UiTest.h"

namespace linux_desktop {
namespace {

using ::testing::Test;
using namespace std::chrono_literals;
using Order = std::vector<std::string>;

class QtMainLoopTest : public ui_test::UiTest {
 protected:
  void note(std::string what) { order.push_back(std::move(what)); }
  Order order;
};

TEST_F(QtMainLoopTest, PostedWorkRunsLaterInItsOrderAlsoInNestedRuns) {
  loop.post([this] {
    note("first");
    loop.post([this] { note("third"); });
    loop.post([this] { loop.stop(); });
    loop.run();
    note("after the nested run");
    loop.stop();
  });
  loop.post([this] { note("second"); });
  EXPECT_TRUE(order.empty());
  loop.run();
  EXPECT_EQ(order, (Order{"first", "second", "third", "after the nested run"}));
}

TEST_F(QtMainLoopTest, WorkFromOtherThreadsKeepsEachThreadsOrder) {
  std::thread other([this] {
    for (int i = 0; i < 100; ++i) loop.post([this, i] { note(std::to_string(i)); });
    loop.post([this] { loop.stop(); });
  });
  loop.run();
  other.join();
  ASSERT_EQ(order.size(), 100U);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], std::to_string(i));
}

TEST_F(QtMainLoopTest, TimersFireOnceInTheirOrderAndNotBeforeTheirTime) {
  const auto start = loop.now();
  platform::MonotonicTime fired{};
  const auto late = loop.startTimer(400ms, [&] {
    note("late");
    fired = loop.now();
    loop.stop();
  });
  const auto one = loop.startTimer(10ms, [this] { note("one"); });
  const auto two = loop.startTimer(10ms, [this] { note("two"); });
  const auto none = loop.startTimer(0ms, [this] { note("none"); });
  loop.run();
  EXPECT_EQ(order, (Order{"none", "one", "two", "late"}));
  EXPECT_GE(fired - start, 400ms);
}

TEST_F(QtMainLoopTest, TimerThatIsGoneNeverFiresAndMayGoInItsOwnWork) {
  auto cancelled = loop.startTimer(1ms, [this] { note("cancelled"); });
  std::unique_ptr<platform::port::MainLoop::Timer> own;
  own = loop.startTimer(2ms, [this, &own] {
    own.reset();
    note("own");
  });
  const auto end = loop.startTimer(10ms, [this] { loop.stop(); });
  cancelled.reset();
  loop.run();
  EXPECT_EQ(order, Order{"own"});
}

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

TEST_F(QtMainLoopTest, TerminationEndsEveryRunAndSleepAndThoseToCome) {
  loop.post([this] {
    loop.post([this] {
      loop.post([this] { loop.terminate(); });
      loop.sleep(10min);
      note("woken");
    });
    loop.run();
    note("inner");
  });
  loop.run();
  loop.run();
  loop.sleep(10min);
  EXPECT_EQ(order, (Order{"woken", "inner"}));
}

}  // namespace
}  // namespace linux_desktop
