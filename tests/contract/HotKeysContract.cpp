#include "contract/DesktopContract.h"
#include "platform/carbon/CarbonEvents.h"
#include "platform/carbon/KeyCodes.h"

namespace contract {
namespace {

using namespace platform;

constexpr std::uint32_t kModifiers = controlKey | optionKey;

TEST_P(DesktopContract, ACombinationIsGivenOnceUntilItIsGivenBack) {
  ASSERT_NE(desk().desktop().hotKeys(), nullptr);
  port::HotKeys& keys = *desk().desktop().hotKeys();
  EXPECT_EQ(keys.registerHotKey(1, kVK_ANSI_K, kModifiers), noErr);
  EXPECT_EQ(keys.registerHotKey(2, kVK_ANSI_K, kModifiers), eventHotKeyExistsErr);
  EXPECT_EQ(keys.registerHotKey(3, kVK_ANSI_K, kModifiers | shiftKey), noErr);
  EXPECT_EQ(keys.registerHotKey(4, kVK_ANSI_J, kModifiers), noErr);

  // Neither the refused number nor one that was never told holds anything.
  keys.unregisterHotKey(2);
  keys.unregisterHotKey(77);
  EXPECT_EQ(keys.registerHotKey(5, kVK_ANSI_K, kModifiers), eventHotKeyExistsErr);
  for (const port::HotKeyNumber number : {1U, 3U, 4U}) keys.unregisterHotKey(number);
  EXPECT_EQ(keys.registerHotKey(6, kVK_ANSI_K, kModifiers), noErr);
  keys.unregisterHotKey(6);
}

}  // namespace
}  // namespace contract
