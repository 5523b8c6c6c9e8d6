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

class Owner final : public NSObject {
 public:
  std::weak_ptr<tests::Listener> outletToListener;
  std::int64_t number = 0;

  void setNumber(std::int64_t value) { number = value; }

  [[nodiscard]] const ClassDescription& classDescription() const override {
    static constexpr std::array outlets{outlet<&Owner::outletToListener>("listener")};
    static constexpr std::array keys{keyValue<&Owner::setNumber>("number")};
    static constexpr ClassDescription description{
        .className = "Owner", .outlets = outlets, .keys = keys};
    return description;
  }
};

TEST(NSObjectTest, AMessageThatNobodyAnswersEndsTheProgramByName) {
  EXPECT_DEATH(Owner().performSelector("jump:"), "programming error: Owner does not answer jump:");
  EXPECT_DEATH(NSObject().performSelector(""), "NSObject does not answer");
  NSObject other;
  EXPECT_DEATH(tests::Listener().performSelector("heard:", &other), "argument of another class");
  EXPECT_DEATH(tests::Listener().performSelector("heard:"), "argument of another class");
}

TEST(NSObjectTest, OutletsTakeObjectsOfTheirClassOnly) {
  Owner owner;
  const auto listener = std::make_shared<tests::Listener>();
  EXPECT_FALSE(owner.connectOutlet("listener", std::make_shared<NSObject>()));
  EXPECT_FALSE(owner.connectOutlet("listener", nullptr));
  EXPECT_FALSE(owner.connectOutlet("other", listener));
  EXPECT_TRUE(owner.connectOutlet("listener", listener));
  EXPECT_EQ(owner.outletToListener.lock(), listener);
}

TEST(NSObjectTest, KeysTakeTextsOfTheirTypeOnly) {
  Owner owner;
  EXPECT_TRUE(owner.setValueForKey("number", "-12"));
  for (const char* text : {"", "1.5", "0x10", " 1", "1 ", "99999999999999999999"}) {
    EXPECT_FALSE(owner.setValueForKey("number", text)) << text;
  }
  EXPECT_FALSE(owner.setValueForKey("numbers", "1"));
  EXPECT_EQ(owner.number, -12);
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
    EXPECT_DEATH(Runtime{desk.desktop}, "a second Runtime");
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

TEST_F(NSNotificationCenterTest, APostFromInsideAPostLeavesTheOuterOneWhole) {
  for (std::size_t i = 0; i < 3; ++i) observe(i);
  bool nested = false;
  onHearing(0, [this, &nested] {
    if (std::exchange(nested, true)) return;
    center.removeObserver(*listeners[1], "news");
    center.postNotificationName("news");
  });
  EXPECT_EQ(told(), (Order{0, 0, 2, 2}));
}

TEST_F(NSNotificationCenterTest, AnObserverThatDropsItselfWhileToldIsSafe) {
  observe(0);
  observe(1);
  onHearing(0, [this] { listeners[0].reset(); });
  EXPECT_EQ(told(), (Order{0, 1}));
  EXPECT_EQ(center.observerCount("news"), 1U);
  EXPECT_EQ(told(), Order{1});
}

TEST_F(NSNotificationCenterTest, RemovingForOneSenderLeavesTheOthers) {
  NSObject first;
  NSObject second;
  for (const NSObject* sender : {&first, &second}) {
    center.addObserver(listeners[0], "heard:", "news", sender);
  }
  center.removeObserver(*listeners[0], "news", &first);
  center.postNotificationName("news", &first);
  center.postNotificationName("news", &second);
  EXPECT_EQ(order, Order{0});
  center.removeObserver(*listeners[0], "news");
  EXPECT_EQ(center.observerCount("news"), 0U);
}

}  // namespace
}  // namespace platform
