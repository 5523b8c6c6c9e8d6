#include <gtest/gtest.h>

#include <array>

#include "desktop/simulated/SimulatedDesktop.h"
#include "platform/Runtime.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSObject.h"
#include "support/DeskTest.h"

namespace platform {
namespace {

using tests::Listener;

TEST(NSObjectTest, AMessageThatNobodyAnswersEndsTheProgramByName) {
  EXPECT_DEATH(Listener().performSelector("jump:"),
               "programming error: Listener does not answer jump:");
  NSObject other;
  EXPECT_DEATH(Listener().performSelector("heard:", &other), "argument of another class");
  EXPECT_DEATH(Listener().performSelector("heard:"), "argument of another class");
}

TEST(RuntimeTest, InstancesAreMadeOnceAndGoTheYoungestFirst) {
  static std::vector<std::string> gone;
  struct Older {
    ~Older() { gone.emplace_back("older"); }
  };
  struct Younger {
    // Whoever goes may still use what is older.
    ~Younger() {
      gone.emplace_back("younger");
      static_cast<void>(Runtime::current().instance<Older>());
    }
  };
  simulated::SimulatedDesktop desk;
  {
    Runtime runtime(desk.desktop);
    const auto* older = runtime.instance<Older>().get();
    static_cast<void>(runtime.instance<Younger>());
    EXPECT_EQ(runtime.instance<Older>().get(), older);
  }
  EXPECT_EQ(gone, (std::vector<std::string>{"younger", "older"}));
  EXPECT_DEATH(static_cast<void>(Runtime::current()), "there is no Runtime");
}

class NSNotificationCenterTest : public ::testing::Test {
 protected:
  NSNotificationCenterTest() {
    for (std::size_t i = 0; i < listeners.size(); ++i) {
      listeners.at(i) = std::make_shared<Listener>();
      listeners.at(i)->reaction = [this, i] { order.push_back(i); };
    }
  }
  void observe(std::size_t index) { center.addObserver(listeners.at(index), "heard:", "news"); }
  std::vector<std::size_t> told() {
    order.clear();
    center.postNotificationName("news");
    return order;
  }
  /// Does `act` too when that listener is told.
  void onHearing(std::size_t index, const std::function<void()>& act) {
    listeners.at(index)->reaction = [this, index, act] {
      order.push_back(index);
      act();
    };
  }

  using Order = std::vector<std::size_t>;
  NSNotificationCenter center;
  std::array<std::shared_ptr<Listener>, 3> listeners;
  Order order;
};

TEST_F(NSNotificationCenterTest, ObserversAreToldInOrderByNameAndSender) {
  NSObject sender;
  NSObject other;
  observe(0);
  center.addObserver(listeners[1], "heard:", "news", &sender);
  center.addObserver(listeners[2], "heard:", "weather");
  observe(0);
  EXPECT_EQ(told(), (Order{0, 0}));
  order.clear();
  center.postNotificationName("news", &other);
  center.postNotificationName("news", &sender, Dictionary{{"page", 1}});
  EXPECT_EQ(order, (Order{0, 0, 0, 1, 0}));
  EXPECT_EQ(listeners[1]->notifications.back().userInfo, (Dictionary{{"page", 1}}));
  center.removeObserver(*listeners[1], "news", &other);
  center.removeObserver(*listeners[0], "news");
  EXPECT_EQ(center.observerCount("news"), 1U) << "which is of the first sender";
}

TEST_F(NSNotificationCenterTest, WhoIsRemovedWhileANotificationIsUnderWayIsNotTold) {
  for (std::size_t i = 0; i < 3; ++i) observe(i);
  onHearing(0, [this] {
    center.removeObserver(*listeners[0], "news");
    center.removeObserver(*listeners[1], "news");
    EXPECT_EQ(center.observerCount("news"), 1U);
  });
  EXPECT_EQ(told(), (Order{0, 2}));
  EXPECT_EQ(told(), Order{2});
}

TEST_F(NSNotificationCenterTest, WhoIsAddedWhileANotificationIsUnderWayIsToldOfTheNext) {
  observe(0);
  onHearing(0, [this] {
    center.removeObserver(*listeners[0], "news");
    observe(0);
    observe(1);
  });
  EXPECT_EQ(told(), Order{0});
  EXPECT_EQ(told(), (Order{0, 1}));
}

TEST_F(NSNotificationCenterTest, AnObserverThatDropsItselfWhileToldIsSafe) {
  observe(0);
  observe(1);
  onHearing(0, [this] { listeners[0].reset(); });
  EXPECT_EQ(told(), (Order{0, 1}));
  EXPECT_EQ(center.observerCount("news"), 1U);
  EXPECT_EQ(told(), Order{1});
}

}  // namespace
}  // namespace platform
