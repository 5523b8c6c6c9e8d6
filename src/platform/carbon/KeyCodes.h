#pragma once

#include <cstdint>

namespace platform {

// The platform's virtual key codes. A code of a key that gives a character names the key by the
// character that it gives on the user's own layout, not by its place on the keyboard.

inline constexpr std::uint16_t kVK_ANSI_A = 0;
inline constexpr std::uint16_t kVK_ANSI_B = 11;
inline constexpr std::uint16_t kVK_ANSI_C = 8;
inline constexpr std::uint16_t kVK_ANSI_D = 2;
inline constexpr std::uint16_t kVK_ANSI_E = 14;
inline constexpr std::uint16_t kVK_ANSI_F = 3;
inline constexpr std::uint16_t kVK_ANSI_G = 5;
inline constexpr std::uint16_t kVK_ANSI_H = 4;
inline constexpr std::uint16_t kVK_ANSI_I = 34;
inline constexpr std::uint16_t kVK_ANSI_J = 38;
inline constexpr std::uint16_t kVK_ANSI_K = 40;
inline constexpr std::uint16_t kVK_ANSI_L = 37;
inline constexpr std::uint16_t kVK_ANSI_M = 46;
inline constexpr std::uint16_t kVK_ANSI_N = 45;
inline constexpr std::uint16_t kVK_ANSI_O = 31;
inline constexpr std::uint16_t kVK_ANSI_P = 35;
inline constexpr std::uint16_t kVK_ANSI_Q = 12;
inline constexpr std::uint16_t kVK_ANSI_R = 15;
inline constexpr std::uint16_t kVK_ANSI_S = 1;
inline constexpr std::uint16_t kVK_ANSI_T = 17;
inline constexpr std::uint16_t kVK_ANSI_U = 32;
inline constexpr std::uint16_t kVK_ANSI_V = 9;
inline constexpr std::uint16_t kVK_ANSI_W = 13;
inline constexpr std::uint16_t kVK_ANSI_X = 7;
inline constexpr std::uint16_t kVK_ANSI_Y = 16;
inline constexpr std::uint16_t kVK_ANSI_Z = 6;

inline constexpr std::uint16_t kVK_ANSI_0 = 29;
inline constexpr std::uint16_t kVK_ANSI_1 = 18;
inline constexpr std::uint16_t kVK_ANSI_2 = 19;
inline constexpr std::uint16_t kVK_ANSI_3 = 20;
inline constexpr std::uint16_t kVK_ANSI_4 = 21;
inline constexpr std::uint16_t kVK_ANSI_5 = 23;
inline constexpr std::uint16_t kVK_ANSI_6 = 22;
inline constexpr std::uint16_t kVK_ANSI_7 = 26;
inline constexpr std::uint16_t kVK_ANSI_8 = 28;
inline constexpr std::uint16_t kVK_ANSI_9 = 25;

inline constexpr std::uint16_t kVK_ANSI_Period = 47;
inline constexpr std::uint16_t kVK_ANSI_Quote = 39;
inline constexpr std::uint16_t kVK_ANSI_RightBracket = 30;
inline constexpr std::uint16_t kVK_ANSI_Semicolon = 41;
inline constexpr std::uint16_t kVK_ANSI_Slash = 44;
inline constexpr std::uint16_t kVK_ANSI_Backslash = 42;
inline constexpr std::uint16_t kVK_ANSI_Comma = 43;
inline constexpr std::uint16_t kVK_ANSI_Equal = 24;
inline constexpr std::uint16_t kVK_ANSI_Grave = 50;
inline constexpr std::uint16_t kVK_ANSI_LeftBracket = 33;
inline constexpr std::uint16_t kVK_ANSI_Minus = 27;

inline constexpr std::uint16_t kVK_Space = 49;
inline constexpr std::uint16_t kVK_Tab = 48;
inline constexpr std::uint16_t kVK_Return = 36;

inline constexpr std::uint16_t kVK_Command = 55;
inline constexpr std::uint16_t kVK_RightCommand = 54;
inline constexpr std::uint16_t kVK_Option = 58;
inline constexpr std::uint16_t kVK_RightOption = 61;
inline constexpr std::uint16_t kVK_Control = 59;
inline constexpr std::uint16_t kVK_RightControl = 62;
inline constexpr std::uint16_t kVK_Shift = 56;
inline constexpr std::uint16_t kVK_RightShift = 60;
inline constexpr std::uint16_t kVK_Function = 63;
inline constexpr std::uint16_t kVK_CapsLock = 57;

inline constexpr std::uint16_t kVK_PageUp = 116;
inline constexpr std::uint16_t kVK_PageDown = 121;
inline constexpr std::uint16_t kVK_Home = 115;
inline constexpr std::uint16_t kVK_End = 119;
inline constexpr std::uint16_t kVK_UpArrow = 126;
inline constexpr std::uint16_t kVK_RightArrow = 124;
inline constexpr std::uint16_t kVK_DownArrow = 125;
inline constexpr std::uint16_t kVK_LeftArrow = 123;

inline constexpr std::uint16_t kVK_F1 = 122;
inline constexpr std::uint16_t kVK_F2 = 120;
inline constexpr std::uint16_t kVK_F3 = 99;
inline constexpr std::uint16_t kVK_F4 = 118;
inline constexpr std::uint16_t kVK_F5 = 96;
inline constexpr std::uint16_t kVK_F6 = 97;
inline constexpr std::uint16_t kVK_F7 = 98;
inline constexpr std::uint16_t kVK_F8 = 100;
inline constexpr std::uint16_t kVK_F9 = 101;
inline constexpr std::uint16_t kVK_F10 = 109;
inline constexpr std::uint16_t kVK_F11 = 103;
inline constexpr std::uint16_t kVK_F12 = 111;
inline constexpr std::uint16_t kVK_F13 = 105;
inline constexpr std::uint16_t kVK_F14 = 107;
inline constexpr std::uint16_t kVK_F15 = 113;
inline constexpr std::uint16_t kVK_F16 = 106;
inline constexpr std::uint16_t kVK_F17 = 64;
inline constexpr std::uint16_t kVK_F18 = 79;
inline constexpr std::uint16_t kVK_F19 = 80;
inline constexpr std::uint16_t kVK_F20 = 90;

inline constexpr std::uint16_t kVK_ANSI_Keypad0 = 82;
inline constexpr std::uint16_t kVK_ANSI_Keypad1 = 83;
inline constexpr std::uint16_t kVK_ANSI_Keypad2 = 84;
inline constexpr std::uint16_t kVK_ANSI_Keypad3 = 85;
inline constexpr std::uint16_t kVK_ANSI_Keypad4 = 86;
inline constexpr std::uint16_t kVK_ANSI_Keypad5 = 87;
inline constexpr std::uint16_t kVK_ANSI_Keypad6 = 88;
inline constexpr std::uint16_t kVK_ANSI_Keypad7 = 89;
inline constexpr std::uint16_t kVK_ANSI_Keypad8 = 91;
inline constexpr std::uint16_t kVK_ANSI_Keypad9 = 92;
inline constexpr std::uint16_t kVK_ANSI_KeypadClear = 71;
inline constexpr std::uint16_t kVK_ANSI_KeypadDecimal = 65;
inline constexpr std::uint16_t kVK_ANSI_KeypadDivide = 75;
inline constexpr std::uint16_t kVK_ANSI_KeypadEnter = 76;
inline constexpr std::uint16_t kVK_ANSI_KeypadEquals = 81;
inline constexpr std::uint16_t kVK_ANSI_KeypadMinus = 78;
inline constexpr std::uint16_t kVK_ANSI_KeypadMultiply = 67;
inline constexpr std::uint16_t kVK_ANSI_KeypadPlus = 69;

inline constexpr std::uint16_t kVK_Escape = 53;
inline constexpr std::uint16_t kVK_Delete = 51;
inline constexpr std::uint16_t kVK_ForwardDelete = 117;
inline constexpr std::uint16_t kVK_Help = 114;
inline constexpr std::uint16_t kVK_VolumeUp = 72;
inline constexpr std::uint16_t kVK_VolumeDown = 73;
inline constexpr std::uint16_t kVK_Mute = 74;

/// The key left of Z on keyboards with one more key; no shortcut uses it.
inline constexpr std::uint16_t kVK_ISO_Section = 10;

// The modifier masks of the hot-key service; events use other bits (see NSEventModifierFlags).
inline constexpr std::uint32_t cmdKey = 0x100;
inline constexpr std::uint32_t shiftKey = 0x200;
inline constexpr std::uint32_t optionKey = 0x800;
inline constexpr std::uint32_t controlKey = 0x1000;

}  // namespace platform
