#include "platform/foundation/NSObject.h"

#include <gtest/gtest.h>

#include <array>

#include "desktop/simulated/SimulatedDesktop.h"
#include "platform/Runtime.h"
#include "support/Listener.h"

namespace platform {
namespace {

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
    Runtime runtime(desk);
    const auto* older = runtime.instance<Older>().get();
    static_cast<void>(runtime.instance<Younger>());
    EXPECT_EQ(runtime.instance<Older>().get(), older);
    EXPECT_DEATH(Runtime{desk}, "a second Runtime");
  }
  EXPECT_EQ(gone, (std::vector<std::string>{"younger", "older"}));
  EXPECT_DEATH(static_cast<void>(Runtime::current()), "there is no Runtime");
}

}  // namespace
}  // namespace platform
