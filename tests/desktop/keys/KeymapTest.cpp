// Keys under the recorder, on the layouts as people have them; no X server.

#include "desktop/linux/keys/Keymap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "preferences/PreferencesTest.h"

namespace {

using linux_desktop::Keycode;
using linux_desktop::Keymap;

constexpr std::uint32_t kShiftBit = 1, kControlBit = 4, kAltBit = 8;

Keymap keymapOf(const char* layouts) {
  const linux_desktop::XkbContext context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
  const xkb_rule_names names{"evdev", "pc105", layouts, "", ""};
  return Keymap(linux_desktop::XkbKeymap(
      xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS)));
}

class RecordedKeysTest : public preferences::PreferencesTest {
 protected:
  /// Records the key, in that state of the modifiers, and returns what the desktop was then asked
  /// for; none when it was not taken.
  [[nodiscard]] std::optional<preferences::Combination> recorded(const Keymap& keymap, Keycode key,
                                                                 std::uint32_t state) {
    const auto press = linux_desktop::keyDownEvent(keymap, key, 0, state);
    if (!press) return std::nullopt;
    record(toggleApp);
    desk.screen.pressKey(*press);
    desk.loop.settle();
    const std::set<preferences::Combination> held = desk.keys.held();
    EXPECT_EQ(held.empty(), preferences::shortcutState().isRecordingShortcut) << "key " << key;
    return held.empty() ? std::nullopt : std::optional(*held.begin());
  }
};

TEST_F(RecordedKeysTest, WhatIsTakenIsTheKeyThatWasPressed) {
  launchAndOpen();
  for (const std::string layout : {"us", "de", "fr", "ru", "gr", "il", "ara", "es", "se", "tr",
                                   "cz", "jp", "in", "th", "bg", "ge", "am",  "ua", "ir", "mk"}) {
    const Keymap keymap = keymapOf(layout.c_str());
    for (const std::uint32_t shift : {std::uint32_t{0}, kShiftBit}) {
      std::set<std::uint32_t> codes;
      for (Keycode key = 8; key <= 255; ++key) {
        const auto taken = recorded(keymap, key, kControlBit | kAltBit | shift);
        if (!taken) continue;
        codes.insert(taken->keyCode);
        const auto code = static_cast<std::uint16_t>(taken->keyCode);
        const auto fire = keymap.keysOf(code, 0, shift != 0);
        EXPECT_TRUE(std::ranges::find(fire, key) != fire.end())
            << layout << ": key " << key << " became " << look(toggleApp).label;
      }
      EXPECT_GE(codes.size(), 26U + 12U) << layout << ": letters and F1 to F12 at least";
    }
  }
}

}  // namespace
