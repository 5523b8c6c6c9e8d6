#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace hotkeys {

/// The keys that a shortcut may use.
enum class Key : std::uint8_t {
  // clang-format off
  A, B, C, D, E, F, G, H, I, J, K, L, M, N, O, P, Q, R, S, T, U, V, W, X, Y, Z,
  Zero, One, Two, Three, Four, Five, Six, Seven, Eight, Nine,
  Period, Quote, RightBracket, Semicolon, Slash, Backslash, Comma, Equal, Grave, LeftBracket,
  Minus,
  Space, Tab, Return,
  Command, RightCommand, Option, RightOption, Control, RightControl, Shift, RightShift,
  Function, CapsLock,
  PageUp, PageDown, Home, End, UpArrow, RightArrow, DownArrow, LeftArrow,
  F1, F2, F3, F4, F5, F6, F7, F8, F9, F10, F11, F12, F13, F14, F15, F16, F17, F18, F19, F20,
  Keypad0, Keypad1, Keypad2, Keypad3, Keypad4, Keypad5, Keypad6, Keypad7, Keypad8, Keypad9,
  KeypadClear, KeypadDecimal, KeypadDivide, KeypadEnter, KeypadEquals, KeypadMinus,
  KeypadMultiply, KeypadPlus,
  Escape, Delete, ForwardDelete, Help, VolumeUp, VolumeDown, Mute,
  // clang-format on
};

inline constexpr std::size_t kKeyCount = static_cast<std::size_t>(Key::Mute) + 1;

/// The platform's virtual key code (see `carbon/KeyCodes.h`), a different one for each key.
[[nodiscard]] std::uint32_t carbonKeyCode(Key key);
/// None for a code that belongs to no key.
[[nodiscard]] std::optional<Key> keyFromCarbonKeyCode(std::uint32_t code);

/// The key with that name or symbol, such as "rightBracket", "]" or "F5"; the case of letters does
/// not matter. A digit alone is the one of the main row.
[[nodiscard]] std::optional<Key> keyFromName(std::string_view text);
/// The short text that the user sees, such as "R" or "⇥".
[[nodiscard]] std::string_view description(Key key);

}  // namespace hotkeys
