#include "hotkeys/HotKey.h"

#include "hotkeys/HotKeysTest.h"

namespace hotkeys {
namespace {

class HotKeyTest : public HotKeysTest {
 protected:
  /// The ids that have a box, in order.
  static std::vector<std::uint32_t> ids() {
    std::vector<std::uint32_t> found;
    for (const auto& [id, box] : HotKeysController::boxesById()) found.push_back(id);
    return found;
  }
  using Ids = std::vector<std::uint32_t>;
};

TEST_F(HotKeyTest, IsRegisteredForAsLongAsSomebodyOwnsIt) {
  auto hotKey = HotKey::make(Key::K, {ModifierFlags::Bits::Control});
  EXPECT_EQ(desk.keys.held(), Combinations{kFirst});
  const auto second = hotKey;
  hotKey.reset();
  EXPECT_EQ(desk.keys.held(), Combinations{kFirst});
  EXPECT_EQ(HotKeysController::hotKeyForId(1), second);
}

TEST_F(HotKeyTest, NumbersAreNeverGivenTwice) {
  auto first = make(kFirst, "first");
  const auto second = make(kSecond, "second");
  EXPECT_EQ(ids(), (Ids{1, 2}));
  EXPECT_NE(first->identifier(), second->identifier());
  first.reset();
  EXPECT_EQ(ids(), Ids{2});
  const auto third = make(kFirst, "third");
  EXPECT_EQ(ids(), (Ids{2, 3}));
  EXPECT_EQ(HotKeysController::hotKeyForId(1), nullptr);
  EXPECT_EQ(HotKeysController::hotKeyForId(3), third);
}

TEST_F(HotKeyTest, IsRegisteredOnceHoweverOftenThatIsAsked) {
  const auto hotKey = make(kFirst, "first");
  HotKeysController::registerHotKey(hotKey);
  hotKey->setPaused(false);
  EXPECT_EQ(ids(), Ids{1});
  EXPECT_EQ(desk.log.calls("hotKeys").size(), 1U);
}

TEST_F(HotKeyTest, PausingGivesTheCombinationBackAndGoingOnTakesANewNumber) {
  const auto hotKey = make(kFirst, "first");
  hotKey->setPaused(true);
  hotKey->setPaused(true);
  EXPECT_TRUE(hotKey->isPaused());
  EXPECT_EQ(desk.keys.held(), Combinations{});
  EXPECT_EQ(ids(), Ids{});
  hotKey->setPaused(false);
  EXPECT_EQ(desk.keys.held(), Combinations{kFirst});
  EXPECT_EQ(ids(), Ids{2});
}

TEST_F(HotKeyTest, ARefusedCombinationIsToldOnceAndKeepsItsBox) {
  desk.keys.heldByOthers.insert(kFirst);
  auto hotKey = make(kFirst, "first");
  EXPECT_EQ(refusals, 1);
  EXPECT_EQ(ids(), Ids{1});
  EXPECT_EQ(HotKeysController::hotKeyForId(1), hotKey);

  // Free again: asking again does not help, pausing between does.
  desk.keys.heldByOthers.clear();
  hotKey->setPaused(false);
  EXPECT_EQ(desk.keys.held(), Combinations{});
  EXPECT_EQ(refusals, 1);
  hotKey->setPaused(true);
  EXPECT_EQ(ids(), Ids{});
  hotKey->setPaused(false);
  EXPECT_EQ(desk.keys.held(), Combinations{kFirst});
  EXPECT_EQ(ids(), Ids{2});
}

TEST_F(HotKeyTest, ADesktopWithoutHotKeysRefusesThemAll) {
  desk.hasHotKeys = false;
  const auto hotKey = make(kFirst, "first");
  EXPECT_EQ(refusals, 1);
  HotKeysController::setUnavailableHandler(nullptr);
  const auto second = make(kSecond, "second");
  EXPECT_EQ(ids(), (Ids{1, 2}));
}

}  // namespace
}  // namespace hotkeys
