#include <algorithm>
#include <thread>

#include "contract/ContractDesk.h"

namespace contract {
namespace {

using namespace std::chrono_literals;
using platform::Duration;
using platform::MonotonicTime;
using Timer = std::unique_ptr<platform::port::MainLoop::Timer>;
using Order = std::vector<std::string>;

TEST_P(DesktopContract, AnyThreadMayPostAndTheMainThreadRunsItOnce) {
  constexpr int kPosts = 1000;
  std::vector<int> arrived;
  std::thread other([&] {
    for (int i = 0; i < kPosts; ++i) loop().post([&arrived, i] { arrived.push_back(i); });
  });
  const auto main = std::this_thread::get_id();
  loop().post([main] { EXPECT_EQ(std::this_thread::get_id(), main); });
  loop().sleep(1ms);
  other.join();
  EXPECT_TRUE(desk().runUntil([&] { return arrived.size() == kPosts; }));
  EXPECT_TRUE(std::ranges::is_sorted(arrived));
}

TEST_P(DesktopContract, TimersFireOnceNotEarlyAndInOrderOfTime) {
  std::vector<MonotonicTime> times;
  const auto stamped = [&](const char* what) {
    return [&, what] {
      order.emplace_back(what);
      times.push_back(loop().now());
    };
  };
  const MonotonicTime start = loop().now();
  const Timer last = loop().startTimer(60ms, stamped("60 ms"));
  const Timer first = loop().startTimer(20ms, stamped("20 ms"));
  const Timer second = loop().startTimer(20ms, stamped("also 20 ms"));
  const Timer atOnce = loop().startTimer(0ms, stamped("0 ms"));
  EXPECT_EQ(order, Order{});
  EXPECT_TRUE(desk().runUntil([this] { return order.size() == 4; }));
  EXPECT_EQ(order, (Order{"0 ms", "20 ms", "also 20 ms", "60 ms"}));
  EXPECT_GE(times.at(1) - start, 20ms);
  EXPECT_GE(times.at(3) - start, 60ms);
}

TEST_P(DesktopContract, ATimerThatIsDestroyedNeverFires) {
  Timer doomed = loop().startTimer(20ms, note("doomed"));
  Timer alsoDoomed = loop().startTimer(30ms, note("also doomed"));
  const Timer killer = loop().startTimer(10ms, [&] { alsoDoomed.reset(); });
  doomed.reset();
  Timer end;
  end = loop().startTimer(50ms, [&end, this, kept = std::string(100, 'x')] {
    end.reset();  // from inside its own work
    order.push_back(kept);
  });
  EXPECT_TRUE(desk().runUntil([this] { return !order.empty(); }));
  EXPECT_EQ(order, Order{std::string(100, 'x')});
}

TEST_P(DesktopContract, StopEndsTheInnermostRunOnceTheEventIsDoneAndItsSleep) {
  loop().post([this] {
    order.emplace_back("outer");
    loop().post([this] {
      loop().post([this] { loop().stop(); });
      const MonotonicTime start = loop().now();
      loop().sleep(20ms);
      EXPECT_GE(loop().now() - start, 20ms);
      order.emplace_back("inner, to its end");
    });
    loop().run();
    order.emplace_back("outer again");
    loop().stop();
  });
  loop().run();
  EXPECT_EQ(order, (Order{"outer", "inner, to its end", "outer again"}));
}

TEST_P(DesktopContract, WhatHappensDuringASleepIsNotLostAndTheClockNeverGoesBack) {
  MonotonicTime woke;
  const Timer timer = loop().startTimer(1ms, [&] {
    loop().post(note("posted"));
    std::thread([this] { loop().post(note("from another thread")); }).join();
    const MonotonicTime start = loop().now();
    loop().sleep(50ms);
    woke = loop().now();
    EXPECT_GE(woke - start, 50ms);
  });
  const Timer second = loop().startTimer(20ms, note("timer"));
  EXPECT_TRUE(desk().runUntil([this] { return order.size() == 3; }));
  EXPECT_EQ(order, (Order{"posted", "from another thread", "timer"}));
  EXPECT_GE(loop().now(), woke);
}

TEST_P(DesktopContract, TheEndOfTheProgramEndsEveryRunAndSleep) {
  loop().post([this] {
    loop().post([this] { loop().terminate(); });
    loop().run();
    order.emplace_back("inner run");
    loop().sleep(1h);
    order.emplace_back("sleep");
  });
  loop().run();
  loop().run();
  order.emplace_back("outer run");
  EXPECT_EQ(order, (Order{"inner run", "sleep", "outer run"}));
}

}  // namespace
}  // namespace contract
