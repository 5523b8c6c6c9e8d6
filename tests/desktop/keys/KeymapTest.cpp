// Which key has which code, on the layouts as people have them; no X server.

#include "desktop/linux/keys/Keymap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "platform/carbon/KeyCodes.h"
#include "preferences/PreferencesTest.h"

namespace {

using linux_desktop::KeyboardGroup;
using linux_desktop::Keycode;
using linux_desktop::Keymap;
using namespace platform;

constexpr Keycode kAE01 = 10;
constexpr Keycode kAE03 = 12;
constexpr Keycode kAC10 = 47;

constexpr std::uint32_t kShiftBit = 1, kControlBit = 4, kAltBit = 8;

Keymap keymapOf(const char* layouts, const char* variants = "") {
  xkb_context* context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
  const xkb_rule_names names{"evdev", "pc105", layouts, variants, ""};
  xkb_keymap* keymap = xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
  xkb_context_unref(context);
  return Keymap(keymap);
}

using Keys = std::vector<Keycode>;

struct Place {
  const char* layouts;
  const char* variants;
  KeyboardGroup group;
  std::uint16_t code;
  bool shift;
  Keys keys;
};

TEST(Keymap, AKeyIsFoundByItsCharacterOnTheLayoutInEffect) {
  const Place places[] = {
      {"de", "", 0, kVK_ANSI_Slash, false, {16}},
      {"fr", "", 0, kVK_ANSI_1, false, {kAE01}},
      {"fr", "", 0, kVK_ANSI_Quote, false, {kAE03}},
      {"us", "dvorak", 0, kVK_ANSI_Q, false, {53}},
      {"us,ru", "", 1, kVK_ANSI_Semicolon, false, {kAC10}},
      {"ru", "", 0, kVK_ANSI_P, false, {33}},
      {"gr", "", 0, kVK_ANSI_A, true, {38}},
      {"us", "", 0, kVK_F5, false, {71}},
      {"us", "", 0, kVK_UpArrow, false, {111}},
      {"us", "", 0, kVK_ANSI_Keypad7, false, {79}},
      {"us", "", 0, kVK_Command, false, {}},
      {"us", "", 0, 10, false, {}},
  };
  for (const Place& place : places) {
    EXPECT_EQ(keymapOf(place.layouts, place.variants).keysOf(place.code, place.group, place.shift),
              place.keys)
        << place.layouts << place.variants << " code " << place.code;
  }
}

TEST(Keymap, WithShiftTheKeyCountsThatGivesTheCharacterWithIt) {
  const Keymap german = keymapOf("de");
  EXPECT_EQ(german.keysOf(kVK_ANSI_Quote, 0, true), Keys{11}) << "Shift and 2";
  EXPECT_EQ(german.keysOf(kVK_ANSI_Slash, 0, true), Keys{16}) << "Shift and 7";
  EXPECT_EQ(german.keysOf(kVK_ANSI_7, 0, true), Keys{16}) << "as no other key gives 7 with it";
}

// --- Under the recorder ---

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
