#include "hotkeys/Key.h"

#include <algorithm>
#include <array>
#include <string>

#include "platform/carbon/KeyCodes.h"
#include "platform/foundation/Utf8.h"

namespace hotkeys {
namespace {

using namespace platform;

/// One key. Names are in lower case; those that are not there are empty.
struct Row {
  Key key;
  std::uint16_t code;
  std::string_view display;
  std::array<std::string_view, 5> names;
};

/// Every lookup reads this table. In the order of the keys, so that a key is its row's number.
// clang-format off
constexpr std::array<Row, kKeyCount> kKeys{{
    {Key::A, kVK_ANSI_A, "A", {"a"}}, {Key::B, kVK_ANSI_B, "B", {"b"}},
    {Key::C, kVK_ANSI_C, "C", {"c"}}, {Key::D, kVK_ANSI_D, "D", {"d"}},
    {Key::E, kVK_ANSI_E, "E", {"e"}}, {Key::F, kVK_ANSI_F, "F", {"f"}},
    {Key::G, kVK_ANSI_G, "G", {"g"}}, {Key::H, kVK_ANSI_H, "H", {"h"}},
    {Key::I, kVK_ANSI_I, "I", {"i"}}, {Key::J, kVK_ANSI_J, "J", {"j"}},
    {Key::K, kVK_ANSI_K, "K", {"k"}}, {Key::L, kVK_ANSI_L, "L", {"l"}},
    {Key::M, kVK_ANSI_M, "M", {"m"}}, {Key::N, kVK_ANSI_N, "N", {"n"}},
    {Key::O, kVK_ANSI_O, "O", {"o"}}, {Key::P, kVK_ANSI_P, "P", {"p"}},
    {Key::Q, kVK_ANSI_Q, "Q", {"q"}}, {Key::R, kVK_ANSI_R, "R", {"r"}},
    {Key::S, kVK_ANSI_S, "S", {"s"}}, {Key::T, kVK_ANSI_T, "T", {"t"}},
    {Key::U, kVK_ANSI_U, "U", {"u"}}, {Key::V, kVK_ANSI_V, "V", {"v"}},
    {Key::W, kVK_ANSI_W, "W", {"w"}}, {Key::X, kVK_ANSI_X, "X", {"x"}},
    {Key::Y, kVK_ANSI_Y, "Y", {"y"}}, {Key::Z, kVK_ANSI_Z, "Z", {"z"}},
    {Key::Zero, kVK_ANSI_0, "0", {"zero", "0"}}, {Key::One, kVK_ANSI_1, "1", {"one", "1"}},
    {Key::Two, kVK_ANSI_2, "2", {"two", "2"}}, {Key::Three, kVK_ANSI_3, "3", {"three", "3"}},
    {Key::Four, kVK_ANSI_4, "4", {"four", "4"}}, {Key::Five, kVK_ANSI_5, "5", {"five", "5"}},
    {Key::Six, kVK_ANSI_6, "6", {"six", "6"}}, {Key::Seven, kVK_ANSI_7, "7", {"seven", "7"}},
    {Key::Eight, kVK_ANSI_8, "8", {"eight", "8"}}, {Key::Nine, kVK_ANSI_9, "9", {"nine", "9"}},
    {Key::Period, kVK_ANSI_Period, ".", {"period", "."}},
    {Key::Quote, kVK_ANSI_Quote, "\"", {"quote", "\""}},
    {Key::RightBracket, kVK_ANSI_RightBracket, "]", {"rightbracket", "]"}},
    {Key::Semicolon, kVK_ANSI_Semicolon, ";", {"semicolon", ";"}},
    {Key::Slash, kVK_ANSI_Slash, "/", {"slash", "/"}},
    {Key::Backslash, kVK_ANSI_Backslash, "\\", {"backslash", "\\"}},
    {Key::Comma, kVK_ANSI_Comma, ",", {"comma", ","}},
    {Key::Equal, kVK_ANSI_Equal, "=", {"equal", "="}},
    {Key::Grave, kVK_ANSI_Grave, "`", {"grave", "`", "\u02CB", "\uFF40"}},
    {Key::LeftBracket, kVK_ANSI_LeftBracket, "[", {"leftbracket", "["}},
    {Key::Minus, kVK_ANSI_Minus, "-", {"minus", "-"}},
    {Key::Space, kVK_Space, "␣", {"space", " ", "␣"}}, {Key::Tab, kVK_Tab, "⇥", {"tab", "\t", "⇥"}},
    {Key::Return, kVK_Return, "↩\uFE0E", {"return", "\r", "↩\uFE0E", "⏎", "⮐"}},
    {Key::Command, kVK_Command, "⌘", {"command", "⌘", "\uF8FF"}},
    {Key::RightCommand, kVK_RightCommand, "⌘", {"rightcommand"}},
    {Key::Option, kVK_Option, "⌥", {"option", "⌥"}},
    {Key::RightOption, kVK_RightOption, "⌥", {"rightoption"}},
    {Key::Control, kVK_Control, "⌃", {"control", "⌃"}},
    {Key::RightControl, kVK_RightControl, "⌃", {"rightcontrol"}},
    {Key::Shift, kVK_Shift, "⇧", {"shift", "⇧"}},
    {Key::RightShift, kVK_RightShift, "⇧", {"rightshift"}},
    {Key::Function, kVK_Function, "fn", {"function", "fn"}},
    {Key::CapsLock, kVK_CapsLock, "⇪", {"capslock", "⇪"}},
    {Key::PageUp, kVK_PageUp, "⇞", {"pageup", "⇞"}},
    {Key::PageDown, kVK_PageDown, "⇟", {"pagedown", "⇟"}},
    {Key::Home, kVK_Home, "↖", {"home", "↖"}}, {Key::End, kVK_End, "↘", {"end", "↘"}},
    {Key::UpArrow, kVK_UpArrow, "↑", {"uparrow", "↑"}},
    {Key::RightArrow, kVK_RightArrow, "→", {"rightarrow", "→"}},
    {Key::DownArrow, kVK_DownArrow, "↓", {"downarrow", "↓"}},
    {Key::LeftArrow, kVK_LeftArrow, "←", {"leftarrow", "←"}},
    {Key::F1, kVK_F1, "\uF860F1", {"f1", "\uF860f1"}},
    {Key::F2, kVK_F2, "\uF860F2", {"f2", "\uF860f2"}},
    {Key::F3, kVK_F3, "\uF860F3", {"f3", "\uF860f3"}},
    {Key::F4, kVK_F4, "\uF860F4", {"f4", "\uF860f4"}},
    {Key::F5, kVK_F5, "\uF860F5", {"f5", "\uF860f5"}},
    {Key::F6, kVK_F6, "\uF860F6", {"f6", "\uF860f6"}},
    {Key::F7, kVK_F7, "\uF860F7", {"f7", "\uF860f7"}},
    {Key::F8, kVK_F8, "\uF860F8", {"f8", "\uF860f8"}},
    {Key::F9, kVK_F9, "\uF860F9", {"f9", "\uF860f9"}},
    {Key::F10, kVK_F10, "\uF861F10", {"f10", "\uF861f10"}},
    {Key::F11, kVK_F11, "\uF861F11", {"f11", "\uF861f11"}},
    {Key::F12, kVK_F12, "\uF861F12", {"f12", "\uF861f12"}},
    {Key::F13, kVK_F13, "\uF861F13", {"f13", "\uF861f13"}},
    {Key::F14, kVK_F14, "\uF861F14", {"f14", "\uF861f14"}},
    {Key::F15, kVK_F15, "\uF861F15", {"f15", "\uF861f15"}},
    {Key::F16, kVK_F16, "\uF861F16", {"f16", "\uF861f16"}},
    {Key::F17, kVK_F17, "\uF861F17", {"f17", "\uF861f17"}},
    {Key::F18, kVK_F18, "\uF861F18", {"f18", "\uF861f18"}},
    {Key::F19, kVK_F19, "\uF861F19", {"f19", "\uF861f19"}},
    {Key::F20, kVK_F20, "\uF861F20", {"f20", "\uF861f20"}},
    {Key::Keypad0, kVK_ANSI_Keypad0, "0", {"keypad0"}},
    {Key::Keypad1, kVK_ANSI_Keypad1, "1", {"keypad1"}},
    {Key::Keypad2, kVK_ANSI_Keypad2, "2", {"keypad2"}},
    {Key::Keypad3, kVK_ANSI_Keypad3, "3", {"keypad3"}},
    {Key::Keypad4, kVK_ANSI_Keypad4, "4", {"keypad4"}},
    {Key::Keypad5, kVK_ANSI_Keypad5, "5", {"keypad5"}},
    {Key::Keypad6, kVK_ANSI_Keypad6, "6", {"keypad6"}},
    {Key::Keypad7, kVK_ANSI_Keypad7, "7", {"keypad7"}},
    {Key::Keypad8, kVK_ANSI_Keypad8, "8", {"keypad8"}},
    {Key::Keypad9, kVK_ANSI_Keypad9, "9", {"keypad9"}},
    {Key::KeypadClear, kVK_ANSI_KeypadClear, "⌧", {"keypadclear", "⌧"}},
    {Key::KeypadDecimal, kVK_ANSI_KeypadDecimal, ".", {"keypaddecimal"}},
    {Key::KeypadDivide, kVK_ANSI_KeypadDivide, "/", {"keypaddivide"}},
    {Key::KeypadEnter, kVK_ANSI_KeypadEnter, "↩\uFE0E", {"keypadenter"}},
    {Key::KeypadEquals, kVK_ANSI_KeypadEquals, "=", {"keypadequals"}},
    {Key::KeypadMinus, kVK_ANSI_KeypadMinus, "-", {"keypadminus"}},
    {Key::KeypadMultiply, kVK_ANSI_KeypadMultiply, "\U0001D5D1", {"keypadmultiply"}},
    {Key::KeypadPlus, kVK_ANSI_KeypadPlus, "+", {"keypadplus"}},
    {Key::Escape, kVK_Escape, "⎋", {"escape", "⎋"}},
    {Key::Delete, kVK_Delete, "⌫", {"delete", "⌫"}},
    {Key::ForwardDelete, kVK_ForwardDelete, "⌦", {"forwarddelete", "⌦"}},
    {Key::Help, kVK_Help, "?\u20DD", {"help", "?\u20DD"}},
    {Key::VolumeUp, kVK_VolumeUp, "🔊", {"volumeup", "🔊"}},
    {Key::VolumeDown, kVK_VolumeDown, "🔉", {"volumedown", "🔉"}},
    {Key::Mute, kVK_Mute, "🔇", {"mute", "🔇"}},
}};
// clang-format on

consteval bool everyKeyHasItsRow() {
  for (std::size_t i = 0; i < kKeys.size(); ++i) {
    if (kKeys[i].key != static_cast<Key>(i)) return false;
  }
  return true;
}
static_assert(everyKeyHasItsRow());

const Row& rowOf(Key key) {
  return kKeys.at(static_cast<std::size_t>(key));
}

/// The key of the row that satisfies `matches`.
template <typename Predicate>
std::optional<Key> findKey(Predicate matches) {
  const auto* row = std::ranges::find_if(kKeys, matches);
  return row == kKeys.end() ? std::nullopt : std::optional(row->key);
}

}  // namespace

std::uint32_t carbonKeyCode(Key key) {
  return rowOf(key).code;
}

std::optional<Key> keyFromCarbonKeyCode(std::uint32_t code) {
  return findKey([code](const Row& row) { return row.code == code; });
}

std::optional<Key> keyFromName(std::string_view text) {
  if (text.empty()) return std::nullopt;
  const std::string name = platform::lowercaseString(text);
  return findKey([&name](const Row& row) {
    return std::ranges::find(row.names, std::string_view(name)) != row.names.end();
  });
}

std::string_view description(Key key) {
  return rowOf(key).display;
}

}  // namespace hotkeys
