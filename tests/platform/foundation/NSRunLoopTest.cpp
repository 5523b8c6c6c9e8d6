#include "platform/foundation/NSRunLoop.h"

#include <gtest/gtest.h>

#include "platform/appkit/NSAlert.h"
#include "support/DeskTest.h"

namespace platform {
namespace {

using namespace std::chrono_literals;
using Order = std::vector<std::string>;

class NSRunLoopTest : public tests::DeskTest {
 protected:
  NSRunLoop::Work note(std::string what) {
    return [this, what = std::move(what)] { order.push_back(what); };
  }
  /// The desktop reports something, `delay` from now.
  void arrivesAfter(Duration delay, NSRunLoop::Work event) {
    desk.loop.at(delay, [this, event = std::move(event)] { loop().deliver(event); });
  }
  NSRunLoop& loop() { return NSRunLoop::mainRunLoop(); }
  void sleepNoting(double seconds) {
    order.emplace_back("sleeps");
    loop().sleep(seconds);
    order.emplace_back("woke");
  }

  Order order;
};

TEST_F(NSRunLoopTest, ADelayedMessageKeepsItsTargetAliveUntilItIsSent) {
  auto target = std::make_shared<tests::Listener>();
  const std::weak_ptr<tests::Listener> watched = target;
  loop().performSelectorAfterDelay(std::exchange(target, nullptr), "called", nullptr, 0.5);
  ASSERT_FALSE(watched.expired());
  const auto seen = watched.lock();
  desk.loop.advance(500ms - 1ns);
  EXPECT_EQ(seen->calls, 0);
  desk.loop.advance(1ns);
  EXPECT_EQ(seen->calls, 1);
  EXPECT_EQ(seen.use_count(), 1);
}

TEST_F(NSRunLoopTest, WhatArrivesDuringASleepTakesEffectAfterItOnceAndInOrder) {
  loop().scheduleTimer(300ms, note("timer"));
  arrivesAfter(100ms, note("click"));
  arrivesAfter(500ms, note("hot key"));
  arrivesAfter(1500ms, note("later"));
  loop().enqueue([this] {
    loop().enqueue(note("queued before"));
    sleepNoting(1);
    loop().enqueue(note("queued after"));
    loop().deliver(note("arrived at once"));
  });
  desk.loop.settle();
  EXPECT_EQ(order, (Order{"sleeps", "woke", "queued before", "queued after", "click", "timer",
                          "hot key", "arrived at once"}));
  EXPECT_EQ(desk.loop.sleeps(), (std::deque<Duration>{1s}));
  desk.loop.advance(500ms);
  EXPECT_EQ(order.back(), "later");
}

TEST_F(NSRunLoopTest, ATimerThatCameDueDuringASleepCanStillBeCancelled) {
  const NSRunLoop::TimerId timer = loop().scheduleTimer(300ms, note("timer"));
  arrivesAfter(100ms, [this, timer] { loop().cancelTimer(timer); });
  loop().sleep(1);
  EXPECT_EQ(loop().pendingTimers(), 1U);
  desk.loop.settle();
  EXPECT_EQ(order, Order{});
  EXPECT_EQ(loop().pendingTimers(), 0U);
}

TEST_F(NSRunLoopTest, AModalRunThatWasHeldBackLetsTheRestHaveItsTurn) {
  arrivesAfter(100ms, [this] {
    order.emplace_back("asks");
    NSAlert alert;
    alert.addButtonWithTitle("Yes");
    alert.addButtonWithTitle("No");
    EXPECT_EQ(alert.runModal(), NSAlert::kFirstButtonReturn + 1);
    order.emplace_back("answered");
  });
  arrivesAfter(200ms, note("click"));
  loop().sleep(1);
  desk.loop.whenWaiting([this] {
    order.emplace_back("nothing left");
    desk.screen.answerAlert(1);
  });
  desk.loop.run();  // the application's own
  desk.loop.settle();
  EXPECT_EQ(order, (Order{"asks", "click", "nothing left", "answered"}));
}

TEST_F(NSRunLoopTest, AnOuterModalRunThatIsAnsweredFirstWaitsForTheInnerOne) {
  desk.loop.run();  // the application's own
  NSAlert alert;
  alert.addButtonWithTitle("OK");
  desk.loop.whenWaiting([&] {
    desk.loop.whenWaiting([this] { desk.screen.answerOpenPanel("/sea.png"); });
    desk.loop.whenWaiting([this] {
      order.emplace_back("nothing left");
      desk.screen.answerAlert(0);
    });
    EXPECT_EQ(alert.runModal(), NSAlert::kFirstButtonReturn);
    order.emplace_back("answered");
  });
  NSOpenPanel panel;
  EXPECT_EQ(panel.runModal(), NSModalResponse::OK);
  EXPECT_EQ(panel.URL()->path(), "/sea.png");
  EXPECT_EQ(order, (Order{"nothing left", "answered"}));
}

TEST_F(NSRunLoopTest, WorkForTheEndOfTheTurnRunsBeforeASleep) {
  loop().enqueue([this] {
    loop().beforeWaiting(note("drawn"));
    order.emplace_back("event");
    loop().enqueue(note("next"));
  });
  desk.loop.settle();
  EXPECT_EQ(order, (Order{"event", "drawn", "next"}));
  order.clear();
  loop().beforeWaiting(note("drawn"));
  sleepNoting(0.1);
  desk.loop.settle();
  EXPECT_EQ(order, (Order{"sleeps", "drawn", "woke"}));
}

}  // namespace
}  // namespace platform
