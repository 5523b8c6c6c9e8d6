#include "hotkeys/Key.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace hotkeys {
namespace {

struct Published {
  Key key;
  std::uint32_t code;
  const char* display;
  std::vector<std::string> names;
};

/// In the order of the keys. The numbers are the platform's own.
// clang-format off
const std::vector<Published> kPublished{
    {Key::A, 0, "A", {"a"}}, {Key::B, 11, "B", {"b"}}, {Key::C, 8, "C", {"c"}},
    {Key::D, 2, "D", {"d"}}, {Key::E, 14, "E", {"e"}}, {Key::F, 3, "F", {"f"}},
    {Key::G, 5, "G", {"g"}}, {Key::H, 4, "H", {"h"}}, {Key::I, 34, "I", {"i"}},
    {Key::J, 38, "J", {"j"}}, {Key::K, 40, "K", {"k"}}, {Key::L, 37, "L", {"l"}},
    {Key::M, 46, "M", {"m"}}, {Key::N, 45, "N", {"n"}}, {Key::O, 31, "O", {"o"}},
    {Key::P, 35, "P", {"p"}}, {Key::Q, 12, "Q", {"q"}}, {Key::R, 15, "R", {"r"}},
    {Key::S, 1, "S", {"s"}}, {Key::T, 17, "T", {"t"}}, {Key::U, 32, "U", {"u"}},
    {Key::V, 9, "V", {"v"}}, {Key::W, 13, "W", {"w"}}, {Key::X, 7, "X", {"x"}},
    {Key::Y, 16, "Y", {"y"}}, {Key::Z, 6, "Z", {"z"}}, {Key::Zero, 29, "0", {"zero", "0"}},
    {Key::One, 18, "1", {"one", "1"}}, {Key::Two, 19, "2", {"two", "2"}},
    {Key::Three, 20, "3", {"three", "3"}}, {Key::Four, 21, "4", {"four", "4"}},
    {Key::Five, 23, "5", {"five", "5"}}, {Key::Six, 22, "6", {"six", "6"}},
    {Key::Seven, 26, "7", {"seven", "7"}}, {Key::Eight, 28, "8", {"eight", "8"}},
    {Key::Nine, 25, "9", {"nine", "9"}}, {Key::Period, 47, ".", {"period", "."}},
    {Key::Quote, 39, "\"", {"quote", "\""}}, {Key::RightBracket, 30, "]", {"rightbracket", "]"}},
    {Key::Semicolon, 41, ";", {"semicolon", ";"}}, {Key::Slash, 44, "/", {"slash", "/"}},
    {Key::Backslash, 42, "\\", {"backslash", "\\"}}, {Key::Comma, 43, ",", {"comma", ","}},
    {Key::Equal, 24, "=", {"equal", "="}},
    {Key::Grave, 50, "`", {"grave", "`", "\u02CB", "\uFF40"}},
    {Key::LeftBracket, 33, "[", {"leftbracket", "["}}, {Key::Minus, 27, "-", {"minus", "-"}},
    {Key::Space, 49, "␣", {"space", " ", "␣"}}, {Key::Tab, 48, "⇥", {"tab", "\t", "⇥"}},
    {Key::Return, 36, "↩\uFE0E", {"return", "\r", "↩\uFE0E", "⏎", "⮐"}},
    {Key::Command, 55, "⌘", {"command", "⌘", "\uF8FF"}},
    {Key::RightCommand, 54, "⌘", {"rightcommand"}}, {Key::Option, 58, "⌥", {"option", "⌥"}},
    {Key::RightOption, 61, "⌥", {"rightoption"}}, {Key::Control, 59, "⌃", {"control", "⌃"}},
    {Key::RightControl, 62, "⌃", {"rightcontrol"}}, {Key::Shift, 56, "⇧", {"shift", "⇧"}},
    {Key::RightShift, 60, "⇧", {"rightshift"}}, {Key::Function, 63, "fn", {"function", "fn"}},
    {Key::CapsLock, 57, "⇪", {"capslock", "⇪"}}, {Key::PageUp, 116, "⇞", {"pageup", "⇞"}},
    {Key::PageDown, 121, "⇟", {"pagedown", "⇟"}}, {Key::Home, 115, "↖", {"home", "↖"}},
    {Key::End, 119, "↘", {"end", "↘"}}, {Key::UpArrow, 126, "↑", {"uparrow", "↑"}},
    {Key::RightArrow, 124, "→", {"rightarrow", "→"}},
    {Key::DownArrow, 125, "↓", {"downarrow", "↓"}}, {Key::LeftArrow, 123, "←", {"leftarrow", "←"}},
    {Key::F1, 122, "\uF860F1", {"f1", "\uF860f1"}}, {Key::F2, 120, "\uF860F2", {"f2", "\uF860f2"}},
    {Key::F3, 99, "\uF860F3", {"f3", "\uF860f3"}}, {Key::F4, 118, "\uF860F4", {"f4", "\uF860f4"}},
    {Key::F5, 96, "\uF860F5", {"f5", "\uF860f5"}}, {Key::F6, 97, "\uF860F6", {"f6", "\uF860f6"}},
    {Key::F7, 98, "\uF860F7", {"f7", "\uF860f7"}}, {Key::F8, 100, "\uF860F8", {"f8", "\uF860f8"}},
    {Key::F9, 101, "\uF860F9", {"f9", "\uF860f9"}},
    {Key::F10, 109, "\uF861F10", {"f10", "\uF861f10"}},
    {Key::F11, 103, "\uF861F11", {"f11", "\uF861f11"}},
    {Key::F12, 111, "\uF861F12", {"f12", "\uF861f12"}},
    {Key::F13, 105, "\uF861F13", {"f13", "\uF861f13"}},
    {Key::F14, 107, "\uF861F14", {"f14", "\uF861f14"}},
    {Key::F15, 113, "\uF861F15", {"f15", "\uF861f15"}},
    {Key::F16, 106, "\uF861F16", {"f16", "\uF861f16"}},
    {Key::F17, 64, "\uF861F17", {"f17", "\uF861f17"}},
    {Key::F18, 79, "\uF861F18", {"f18", "\uF861f18"}},
    {Key::F19, 80, "\uF861F19", {"f19", "\uF861f19"}},
    {Key::F20, 90, "\uF861F20", {"f20", "\uF861f20"}}, {Key::Keypad0, 82, "0", {"keypad0"}},
    {Key::Keypad1, 83, "1", {"keypad1"}}, {Key::Keypad2, 84, "2", {"keypad2"}},
    {Key::Keypad3, 85, "3", {"keypad3"}}, {Key::Keypad4, 86, "4", {"keypad4"}},
    {Key::Keypad5, 87, "5", {"keypad5"}}, {Key::Keypad6, 88, "6", {"keypad6"}},
    {Key::Keypad7, 89, "7", {"keypad7"}}, {Key::Keypad8, 91, "8", {"keypad8"}},
    {Key::Keypad9, 92, "9", {"keypad9"}}, {Key::KeypadClear, 71, "⌧", {"keypadclear", "⌧"}},
    {Key::KeypadDecimal, 65, ".", {"keypaddecimal"}},
    {Key::KeypadDivide, 75, "/", {"keypaddivide"}},
    {Key::KeypadEnter, 76, "↩\uFE0E", {"keypadenter"}},
    {Key::KeypadEquals, 81, "=", {"keypadequals"}}, {Key::KeypadMinus, 78, "-", {"keypadminus"}},
    {Key::KeypadMultiply, 67, "\U0001D5D1", {"keypadmultiply"}},
    {Key::KeypadPlus, 69, "+", {"keypadplus"}}, {Key::Escape, 53, "⎋", {"escape", "⎋"}},
    {Key::Delete, 51, "⌫", {"delete", "⌫"}}, {Key::ForwardDelete, 117, "⌦", {"forwarddelete", "⌦"}},
    {Key::Help, 114, "?\u20DD", {"help", "?\u20DD"}}, {Key::VolumeUp, 72, "🔊", {"volumeup", "🔊"}},
    {Key::VolumeDown, 73, "🔉", {"volumedown", "🔉"}}, {Key::Mute, 74, "🔇", {"mute", "🔇"}},
};
// clang-format on

std::string inCapitals(std::string text) {
  std::ranges::transform(text, text.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  return text;
}

TEST(KeyTest, EveryKeyHasItsCodeItsTextAndItsNames) {
  ASSERT_EQ(kPublished.size(), kKeyCount);
  for (std::size_t index = 0; index < kKeyCount; ++index) {
    const auto& [key, code, display, names] = kPublished[index];
    SCOPED_TRACE(display);
    EXPECT_EQ(static_cast<std::size_t>(key), index);
    EXPECT_EQ(carbonKeyCode(key), code);
    EXPECT_EQ(keyFromCarbonKeyCode(code), key);
    EXPECT_EQ(description(key), display);
    for (const std::string& name : names) {
      EXPECT_EQ(keyFromName(name), key) << name;
      EXPECT_EQ(keyFromName(inCapitals(name)), key) << name;
    }
  }
}

TEST(KeyTest, TheCodesBetweenBelongToNoKey) {
  for (const std::uint32_t code : {10U, 52U, 66U, 68U, 70U, 77U, 93U, 94U, 95U, 102U, 104U, 108U,
                                   110U, 112U, 127U, 0xFFFFU, 0xFFFFFFFFU}) {
    EXPECT_EQ(keyFromCarbonKeyCode(code), std::nullopt) << code;
  }
}

TEST(KeyTest, OtherTextsNameNoKey) {
  for (const char* text : {"", "plus", "+", "\U0001D5D1", "keypad", "enter", "!", "ä", "↩", "a ",
                           "f21", "\uF861F1", "\uF860F10"}) {
    EXPECT_EQ(keyFromName(text), std::nullopt) << text;
  }
  EXPECT_EQ(keyFromName(std::string_view("\0", 1)), std::nullopt);
}

}  // namespace
}  // namespace hotkeys
