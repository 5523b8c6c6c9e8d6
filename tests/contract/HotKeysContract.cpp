#include <utility>

#include "contract/ContractDesk.h"
#include "platform/carbon/CarbonEvents.h"
#include "platform/carbon/KeyCodes.h"

namespace contract {
namespace {

using namespace platform;

constexpr std::uint32_t kModifiers = controlKey | optionKey;

/// Notes what it is told.
class Listener final : public port::HotKeysClient {
 public:
  explicit Listener(std::vector<std::string>& heard) : heard_(heard) {}
  void hotKeyPressed(port::HotKeyNumber number) override {
    heard_.push_back("pressed " + std::to_string(number));
  }
  void hotKeyReleased(port::HotKeyNumber number) override {
    heard_.push_back("released " + std::to_string(number));
  }

 private:
  std::vector<std::string>& heard_;
};

TEST_P(DesktopContract, ACombinationIsGivenOnceUntilItIsGivenBack) {
  ASSERT_NE(desk().desktop().hotKeys, nullptr);
  port::HotKeys& keys = *desk().desktop().hotKeys;
  EXPECT_EQ(keys.registerHotKey(1, kVK_ANSI_K, kModifiers, {}), noErr);
  EXPECT_EQ(keys.registerHotKey(2, kVK_ANSI_K, kModifiers, {}), eventHotKeyExistsErr);
  EXPECT_EQ(keys.registerHotKey(3, kVK_ANSI_K, kModifiers | shiftKey, {}), noErr);
  EXPECT_EQ(keys.registerHotKey(4, kVK_ANSI_J, kModifiers, {}), noErr);

  // Neither the refused number nor one that was never told holds anything.
  keys.unregisterHotKey(2);
  keys.unregisterHotKey(77);
  EXPECT_EQ(keys.registerHotKey(5, kVK_ANSI_K, kModifiers, {}), eventHotKeyExistsErr);
  for (const port::HotKeyNumber number : {1U, 3U, 4U}) keys.unregisterHotKey(number);
  EXPECT_EQ(keys.registerHotKey(6, kVK_ANSI_K, kModifiers, {}), noErr);
  keys.unregisterHotKey(6);
}

TEST_P(DesktopContract, APressAndItsReleaseAreReportedForAsLongAsTheCombinationIsHeld) {
  port::HotKeys& keys = *desk().desktop().hotKeys;
  Listener listener(order);
  keys.setClient(&listener);
  ASSERT_EQ(keys.registerHotKey(1, kVK_ANSI_K, kModifiers, {}), noErr);
  ASSERT_EQ(keys.registerHotKey(2, kVK_ANSI_J, kModifiers, {}), noErr);
  const auto hears = [this](const std::vector<std::string>& wanted) {
    static_cast<void>(desk().runUntil([&] { return order.size() >= wanted.size(); }));
    EXPECT_EQ(std::exchange(order, {}), wanted);
  };
  desk().pressLetter(kVK_ANSI_K, kModifiers);
  hears({"pressed 1"});
  desk().releaseLetter(kVK_ANSI_K, kModifiers);
  hears({"released 1"});

  desk().pressLetter(kVK_ANSI_K, kModifiers);
  hears({"pressed 1"});
  // Paused while it is held, and let go on: a release without a press is nobody's.
  keys.unregisterHotKey(1);
  ASSERT_EQ(keys.registerHotKey(3, kVK_ANSI_K, kModifiers, {}), noErr);
  desk().releaseLetter(kVK_ANSI_K, kModifiers);
  desk().pressLetter(kVK_ANSI_J, kModifiers);
  desk().releaseLetter(kVK_ANSI_J, kModifiers);
  hears({"pressed 2", "released 2"});
  desk().pressLetter(kVK_ANSI_K, kModifiers);
  desk().releaseLetter(kVK_ANSI_K, kModifiers);
  hears({"pressed 3", "released 3"});

  keys.unregisterHotKey(3);
  desk().pressLetter(kVK_ANSI_K, kModifiers);
  desk().releaseLetter(kVK_ANSI_K, kModifiers);
  desk().pressLetter(kVK_ANSI_J, kModifiers);
  desk().releaseLetter(kVK_ANSI_J, kModifiers);
  hears({"pressed 2", "released 2"});
  keys.unregisterHotKey(2);
  keys.setClient(nullptr);
}

TEST_P(DesktopContract, AReservedCombinationIsGivenToNobody) {
  port::HotKeys& keys = *desk().desktop().hotKeys;
  EXPECT_FALSE(keys.isReserved(kVK_ANSI_C, kModifiers));
  ASSERT_TRUE(keys.isReserved(kVK_ANSI_C, controlKey));
  EXPECT_EQ(keys.registerHotKey(1, kVK_ANSI_C, controlKey, {}), eventHotKeyInvalidErr);
}

}  // namespace
}  // namespace contract
