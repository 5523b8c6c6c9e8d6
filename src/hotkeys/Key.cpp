#include "hotkeys/Key.h"

#include <algorithm>
#include <array>
#include <string>

#include "platform/carbon/KeyCodes.h"

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
constexpr std::array<Row, kKeyCount> kKeys{
    Row{Key::A, kVK_ANSI_A, "A", {"a"}},
    Row{Key::B, kVK_ANSI_B, "B", {"b"}},
    Row{Key::C, kVK_ANSI_C, "C", {"c"}},
    Row{Key::D, kVK_ANSI_D, "D", {"d"}},
    Row{Key::E, kVK_ANSI_E, "E", {"e"}},
    Row{Key::F, kVK_ANSI_F, "F", {"f"}},
    Row{Key::G, kVK_ANSI_G, "G", {"g"}},
    Row{Key::H, kVK_ANSI_H, "H", {"h"}},
    Row{Key::I, kVK_ANSI_I, "I", {"i"}},
    Row{Key::J, kVK_ANSI_J, "J", {"j"}},
    Row{Key::K, kVK_ANSI_K, "K", {"k"}},
    Row{Key::L, kVK_ANSI_L, "L", {"l"}},
    Row{Key::M, kVK_ANSI_M, "M", {"m"}},
    Row{Key::N, kVK_ANSI_N, "N", {"n"}},
    Row{Key::O, kVK_ANSI_O, "O", {"o"}},
    Row{Key::P, kVK_ANSI_P, "P", {"p"}},
    Row{Key::Q, kVK_ANSI_Q, "Q", {"q"}},
    Row{Key::R, kVK_ANSI_R, "R", {"r"}},
    Row{Key::S, kVK_ANSI_S, "S", {"s"}},
    Row{Key::T, kVK_ANSI_T, "T", {"t"}},
    Row{Key::U, kVK_ANSI_U, "U", {"u"}},
    Row{Key::V, kVK_ANSI_V, "V", {"v"}},
    Row{Key::W, kVK_ANSI_W, "W", {"w"}},
    Row{Key::X, kVK_ANSI_X, "X", {"x"}},
    Row{Key::Y, kVK_ANSI_Y, "Y", {"y"}},
    Row{Key::Z, kVK_ANSI_Z, "Z", {"z"}},
    Row{Key::Zero, kVK_ANSI_0, "0", {"zero", "0"}},
    Row{Key::One, kVK_ANSI_1, "1", {"one", "1"}},
    Row{Key::Two, kVK_ANSI_2, "2", {"two", "2"}},
    Row{Key::Three, kVK_ANSI_3, "3", {"three", "3"}},
    Row{Key::Four, kVK_ANSI_4, "4", {"four", "4"}},
    Row{Key::Five, kVK_ANSI_5, "5", {"five", "5"}},
    Row{Key::Six, kVK_ANSI_6, "6", {"six", "6"}},
    Row{Key::Seven, kVK_ANSI_7, "7", {"seven", "7"}},
    Row{Key::Eight, kVK_ANSI_8, "8", {"eight", "8"}},
    Row{Key::Nine, kVK_ANSI_9, "9", {"nine", "9"}},
    Row{Key::Period, kVK_ANSI_Period, ".", {"period", "."}},
    Row{Key::Quote, kVK_ANSI_Quote, "\"", {"quote", "\""}},
    Row{Key::RightBracket, kVK_ANSI_RightBracket, "]", {"rightbracket", "]"}},
    Row{Key::Semicolon, kVK_ANSI_Semicolon, ";", {"semicolon", ";"}},
    Row{Key::Slash, kVK_ANSI_Slash, "/", {"slash", "/"}},
    Row{Key::Backslash, kVK_ANSI_Backslash, "\\", {"backslash", "\\"}},
    Row{Key::Comma, kVK_ANSI_Comma, ",", {"comma", ","}},
    Row{Key::Equal, kVK_ANSI_Equal, "=", {"equal", "="}},
    Row{Key::Grave, kVK_ANSI_Grave, "`", {"grave", "`", "\u02CB", "\uFF40"}},
    Row{Key::LeftBracket, kVK_ANSI_LeftBracket, "[", {"leftbracket", "["}},
    Row{Key::Minus, kVK_ANSI_Minus, "-", {"minus", "-"}},
    Row{Key::Space, kVK_Space, "␣", {"space", " ", "␣"}},
    Row{Key::Tab, kVK_Tab, "⇥", {"tab", "\t", "⇥"}},
    Row{Key::Return, kVK_Return, "↩\uFE0E", {"return", "\r", "↩\uFE0E", "⏎", "⮐"}},
    Row{Key::Command, kVK_Command, "⌘", {"command", "⌘", "\uF8FF"}},
    Row{Key::RightCommand, kVK_RightCommand, "⌘", {"rightcommand"}},
    Row{Key::Option, kVK_Option, "⌥", {"option", "⌥"}},
    Row{Key::RightOption, kVK_RightOption, "⌥", {"rightoption"}},
    Row{Key::Control, kVK_Control, "⌃", {"control", "⌃"}},
    Row{Key::RightControl, kVK_RightControl, "⌃", {"rightcontrol"}},
    Row{Key::Shift, kVK_Shift, "⇧", {"shift", "⇧"}},
    Row{Key::RightShift, kVK_RightShift, "⇧", {"rightshift"}},
    Row{Key::Function, kVK_Function, "fn", {"function", "fn"}},
    Row{Key::CapsLock, kVK_CapsLock, "⇪", {"capslock", "⇪"}},
    Row{Key::PageUp, kVK_PageUp, "⇞", {"pageup", "⇞"}},
    Row{Key::PageDown, kVK_PageDown, "⇟", {"pagedown", "⇟"}},
    Row{Key::Home, kVK_Home, "↖", {"home", "↖"}},
    Row{Key::End, kVK_End, "↘", {"end", "↘"}},
    Row{Key::UpArrow, kVK_UpArrow, "↑", {"uparrow", "↑"}},
    Row{Key::RightArrow, kVK_RightArrow, "→", {"rightarrow", "→"}},
    Row{Key::DownArrow, kVK_DownArrow, "↓", {"downarrow", "↓"}},
    Row{Key::LeftArrow, kVK_LeftArrow, "←", {"leftarrow", "←"}},
    Row{Key::F1, kVK_F1, "\uF860F1", {"f1", "\uF860f1"}},
    Row{Key::F2, kVK_F2, "\uF860F2", {"f2", "\uF860f2"}},
    Row{Key::F3, kVK_F3, "\uF860F3", {"f3", "\uF860f3"}},
    Row{Key::F4, kVK_F4, "\uF860F4", {"f4", "\uF860f4"}},
    Row{Key::F5, kVK_F5, "\uF860F5", {"f5", "\uF860f5"}},
    Row{Key::F6, kVK_F6, "\uF860F6", {"f6", "\uF860f6"}},
    Row{Key::F7, kVK_F7, "\uF860F7", {"f7", "\uF860f7"}},
    Row{Key::F8, kVK_F8, "\uF860F8", {"f8", "\uF860f8"}},
    Row{Key::F9, kVK_F9, "\uF860F9", {"f9", "\uF860f9"}},
    Row{Key::F10, kVK_F10, "\uF861F10", {"f10", "\uF861f10"}},
    Row{Key::F11, kVK_F11, "\uF861F11", {"f11", "\uF861f11"}},
    Row{Key::F12, kVK_F12, "\uF861F12", {"f12", "\uF861f12"}},
    Row{Key::F13, kVK_F13, "\uF861F13", {"f13", "\uF861f13"}},
    Row{Key::F14, kVK_F14, "\uF861F14", {"f14", "\uF861f14"}},
    Row{Key::F15, kVK_F15, "\uF861F15", {"f15", "\uF861f15"}},
    Row{Key::F16, kVK_F16, "\uF861F16", {"f16", "\uF861f16"}},
    Row{Key::F17, kVK_F17, "\uF861F17", {"f17", "\uF861f17"}},
    Row{Key::F18, kVK_F18, "\uF861F18", {"f18", "\uF861f18"}},
    Row{Key::F19, kVK_F19, "\uF861F19", {"f19", "\uF861f19"}},
    Row{Key::F20, kVK_F20, "\uF861F20", {"f20", "\uF861f20"}},
    Row{Key::Keypad0, kVK_ANSI_Keypad0, "0", {"keypad0"}},
    Row{Key::Keypad1, kVK_ANSI_Keypad1, "1", {"keypad1"}},
    Row{Key::Keypad2, kVK_ANSI_Keypad2, "2", {"keypad2"}},
    Row{Key::Keypad3, kVK_ANSI_Keypad3, "3", {"keypad3"}},
    Row{Key::Keypad4, kVK_ANSI_Keypad4, "4", {"keypad4"}},
    Row{Key::Keypad5, kVK_ANSI_Keypad5, "5", {"keypad5"}},
    Row{Key::Keypad6, kVK_ANSI_Keypad6, "6", {"keypad6"}},
    Row{Key::Keypad7, kVK_ANSI_Keypad7, "7", {"keypad7"}},
    Row{Key::Keypad8, kVK_ANSI_Keypad8, "8", {"keypad8"}},
    Row{Key::Keypad9, kVK_ANSI_Keypad9, "9", {"keypad9"}},
    Row{Key::KeypadClear, kVK_ANSI_KeypadClear, "⌧", {"keypadclear", "⌧"}},
    Row{Key::KeypadDecimal, kVK_ANSI_KeypadDecimal, ".", {"keypaddecimal"}},
    Row{Key::KeypadDivide, kVK_ANSI_KeypadDivide, "/", {"keypaddivide"}},
    Row{Key::KeypadEnter, kVK_ANSI_KeypadEnter, "↩\uFE0E", {"keypadenter"}},
    Row{Key::KeypadEquals, kVK_ANSI_KeypadEquals, "=", {"keypadequals"}},
    Row{Key::KeypadMinus, kVK_ANSI_KeypadMinus, "-", {"keypadminus"}},
    Row{Key::KeypadMultiply, kVK_ANSI_KeypadMultiply, "\U0001D5D1", {"keypadmultiply"}},
    Row{Key::KeypadPlus, kVK_ANSI_KeypadPlus, "+", {"keypadplus"}},
    Row{Key::Escape, kVK_Escape, "⎋", {"escape", "⎋"}},
    Row{Key::Delete, kVK_Delete, "⌫", {"delete", "⌫"}},
    Row{Key::ForwardDelete, kVK_ForwardDelete, "⌦", {"forwarddelete", "⌦"}},
    Row{Key::Help, kVK_Help, "?\u20DD", {"help", "?\u20DD"}},
    Row{Key::VolumeUp, kVK_VolumeUp, "🔊", {"volumeup", "🔊"}},
    Row{Key::VolumeDown, kVK_VolumeDown, "🔉", {"volumedown", "🔉"}},
    Row{Key::Mute, kVK_Mute, "🔇", {"mute", "🔇"}},
};
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

char lowerCased(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
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
  std::string name(text);
  std::ranges::transform(name, name.begin(), lowerCased);
  return findKey([&name](const Row& row) {
    return std::ranges::find(row.names, std::string_view(name)) != row.names.end();
  });
}

std::string_view description(Key key) {
  return rowOf(key).display;
}

}  // namespace hotkeys
