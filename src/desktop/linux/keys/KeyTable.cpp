#include "desktop/linux/keys/KeyTable.h"

#include <QtCore/qnamespace.h>

#include <QByteArrayView>
#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
namespace {

using namespace platform;

// clang-format off
constexpr KeyRow kKeys[] = {
    {kVK_ANSI_A, XKB_KEY_a}, {kVK_ANSI_B, XKB_KEY_b}, {kVK_ANSI_C, XKB_KEY_c},
    {kVK_ANSI_D, XKB_KEY_d}, {kVK_ANSI_E, XKB_KEY_e}, {kVK_ANSI_F, XKB_KEY_f},
    {kVK_ANSI_G, XKB_KEY_g}, {kVK_ANSI_H, XKB_KEY_h}, {kVK_ANSI_I, XKB_KEY_i},
    {kVK_ANSI_J, XKB_KEY_j}, {kVK_ANSI_K, XKB_KEY_k}, {kVK_ANSI_L, XKB_KEY_l},
    {kVK_ANSI_M, XKB_KEY_m}, {kVK_ANSI_N, XKB_KEY_n}, {kVK_ANSI_O, XKB_KEY_o},
    {kVK_ANSI_P, XKB_KEY_p}, {kVK_ANSI_Q, XKB_KEY_q}, {kVK_ANSI_R, XKB_KEY_r},
    {kVK_ANSI_S, XKB_KEY_s}, {kVK_ANSI_T, XKB_KEY_t}, {kVK_ANSI_U, XKB_KEY_u},
    {kVK_ANSI_V, XKB_KEY_v}, {kVK_ANSI_W, XKB_KEY_w}, {kVK_ANSI_X, XKB_KEY_x},
    {kVK_ANSI_Y, XKB_KEY_y}, {kVK_ANSI_Z, XKB_KEY_z}, {kVK_ANSI_0, XKB_KEY_0},
    {kVK_ANSI_1, XKB_KEY_1}, {kVK_ANSI_2, XKB_KEY_2}, {kVK_ANSI_3, XKB_KEY_3},
    {kVK_ANSI_4, XKB_KEY_4}, {kVK_ANSI_5, XKB_KEY_5}, {kVK_ANSI_6, XKB_KEY_6},
    {kVK_ANSI_7, XKB_KEY_7}, {kVK_ANSI_8, XKB_KEY_8}, {kVK_ANSI_9, XKB_KEY_9},
    {kVK_ANSI_Period, XKB_KEY_period}, {kVK_ANSI_Quote, XKB_KEY_quotedbl},
    {kVK_ANSI_Quote, XKB_KEY_apostrophe, U'"'}, {kVK_ANSI_RightBracket, XKB_KEY_bracketright},
    {kVK_ANSI_Semicolon, XKB_KEY_semicolon}, {kVK_ANSI_Slash, XKB_KEY_slash},
    {kVK_ANSI_Backslash, XKB_KEY_backslash}, {kVK_ANSI_Comma, XKB_KEY_comma},
    {kVK_ANSI_Equal, XKB_KEY_equal}, {kVK_ANSI_Grave, XKB_KEY_grave},
    {kVK_ANSI_LeftBracket, XKB_KEY_bracketleft}, {kVK_ANSI_Minus, XKB_KEY_minus},
    {kVK_Space, XKB_KEY_space}, {kVK_Tab, XKB_KEY_Tab}, {kVK_Tab, XKB_KEY_ISO_Left_Tab, U'\t'},
    {kVK_Return, XKB_KEY_Return}, {kVK_PageUp, XKB_KEY_Page_Up, 0xf72c},
    {kVK_PageDown, XKB_KEY_Page_Down, 0xf72d}, {kVK_Home, XKB_KEY_Home, 0xf729},
    {kVK_End, XKB_KEY_End, 0xf72b}, {kVK_UpArrow, XKB_KEY_Up, 0xf700},
    {kVK_RightArrow, XKB_KEY_Right, 0xf703}, {kVK_DownArrow, XKB_KEY_Down, 0xf701},
    {kVK_LeftArrow, XKB_KEY_Left, 0xf702}, {kVK_F1, XKB_KEY_F1, 0xf704},
    {kVK_F2, XKB_KEY_F2, 0xf705}, {kVK_F3, XKB_KEY_F3, 0xf706}, {kVK_F4, XKB_KEY_F4, 0xf707},
    {kVK_F5, XKB_KEY_F5, 0xf708}, {kVK_F6, XKB_KEY_F6, 0xf709}, {kVK_F7, XKB_KEY_F7, 0xf70a},
    {kVK_F8, XKB_KEY_F8, 0xf70b}, {kVK_F9, XKB_KEY_F9, 0xf70c}, {kVK_F10, XKB_KEY_F10, 0xf70d},
    {kVK_F11, XKB_KEY_F11, 0xf70e}, {kVK_F12, XKB_KEY_F12, 0xf70f}, {kVK_F13, XKB_KEY_F13, 0xf710},
    {kVK_F14, XKB_KEY_F14, 0xf711}, {kVK_F15, XKB_KEY_F15, 0xf712}, {kVK_F16, XKB_KEY_F16, 0xf713},
    {kVK_F17, XKB_KEY_F17, 0xf714}, {kVK_F18, XKB_KEY_F18, 0xf715}, {kVK_F19, XKB_KEY_F19, 0xf716},
    {kVK_F20, XKB_KEY_F20, 0xf717}, {kVK_ANSI_Keypad0, XKB_KEY_KP_0},
    {kVK_ANSI_Keypad0, XKB_KEY_KP_Insert, U'0'}, {kVK_ANSI_Keypad1, XKB_KEY_KP_1},
    {kVK_ANSI_Keypad1, XKB_KEY_KP_End, U'1'}, {kVK_ANSI_Keypad2, XKB_KEY_KP_2},
    {kVK_ANSI_Keypad2, XKB_KEY_KP_Down, U'2'}, {kVK_ANSI_Keypad3, XKB_KEY_KP_3},
    {kVK_ANSI_Keypad3, XKB_KEY_KP_Next, U'3'}, {kVK_ANSI_Keypad4, XKB_KEY_KP_4},
    {kVK_ANSI_Keypad4, XKB_KEY_KP_Left, U'4'}, {kVK_ANSI_Keypad5, XKB_KEY_KP_5},
    {kVK_ANSI_Keypad5, XKB_KEY_KP_Begin, U'5'}, {kVK_ANSI_Keypad6, XKB_KEY_KP_6},
    {kVK_ANSI_Keypad6, XKB_KEY_KP_Right, U'6'}, {kVK_ANSI_Keypad7, XKB_KEY_KP_7},
    {kVK_ANSI_Keypad7, XKB_KEY_KP_Home, U'7'}, {kVK_ANSI_Keypad8, XKB_KEY_KP_8},
    {kVK_ANSI_Keypad8, XKB_KEY_KP_Up, U'8'}, {kVK_ANSI_Keypad9, XKB_KEY_KP_9},
    {kVK_ANSI_Keypad9, XKB_KEY_KP_Prior, U'9'}, {kVK_ANSI_KeypadClear, XKB_KEY_Clear, 0xf739},
    {kVK_ANSI_KeypadDecimal, XKB_KEY_KP_Decimal, U'.'},
    {kVK_ANSI_KeypadDecimal, XKB_KEY_KP_Separator, U'.'},
    {kVK_ANSI_KeypadDecimal, XKB_KEY_KP_Delete, U'.'}, {kVK_ANSI_KeypadDivide, XKB_KEY_KP_Divide},
    {kVK_ANSI_KeypadEnter, XKB_KEY_KP_Enter, 0x3}, {kVK_ANSI_KeypadEquals, XKB_KEY_KP_Equal},
    {kVK_ANSI_KeypadMinus, XKB_KEY_KP_Subtract}, {kVK_ANSI_KeypadMultiply, XKB_KEY_KP_Multiply},
    {kVK_ANSI_KeypadPlus, XKB_KEY_KP_Add}, {kVK_Escape, XKB_KEY_Escape},
    {kVK_Delete, XKB_KEY_BackSpace, 0x7f}, {kVK_ForwardDelete, XKB_KEY_Delete, 0xf728},
    {kVK_Help, XKB_KEY_Help, 0xf746}, {kVK_Help, XKB_KEY_Insert, 0xf746},
    {kVK_VolumeUp, XKB_KEY_XF86AudioRaiseVolume}, {kVK_VolumeDown, XKB_KEY_XF86AudioLowerVolume},
    {kVK_Mute, XKB_KEY_XF86AudioMute},
};
// clang-format on

constexpr std::array<std::uint32_t, 4> kModifiers{controlKey, optionKey, shiftKey, cmdKey};

constexpr std::pair<std::string_view, std::uint32_t> kModifierWords[] = {
    {"control", controlKey},  {"ctrl", controlKey},     {"ctl", controlKey},
    {"primary", controlKey},  {"alt", optionKey},       {"mod1", optionKey},
    {"shift", shiftKey},      {"shft", shiftKey},       {"super", cmdKey},
    {"mod4", cmdKey},         {"logo", cmdKey},         {"lock", kOtherModifier},
    {"mod2", kOtherModifier}, {"mod3", kOtherModifier}, {"mod5", kOtherModifier},
};

/// The preferred one of a code; null where no shortcut can have it.
const KeyRow* rowOf(std::uint32_t code) {
  const auto* row = std::ranges::find(kKeys, code, &KeyRow::code);
  return row == std::end(kKeys) ? nullptr : row;
}

std::string keyName(std::uint32_t code) {
  const KeyRow* row = rowOf(code);
  std::array<char, 64> name{};
  if (row == nullptr || xkb_keysym_get_name(row->keysym, name.data(), name.size()) < 0) {
    return "key " + std::to_string(code);
  }
  return name.data();
}

bool isFunctionKey(xkb_keysym_t keysym) {
  return keysym >= XKB_KEY_F1 && keysym <= XKB_KEY_F20;
}

}  // namespace

std::span<const KeyRow> keyTable() {
  return kKeys;
}

const KeyRow* keyRowOf(xkb_keysym_t keysym) {
  const auto* row = std::ranges::find(kKeys, xkb_keysym_to_lower(keysym), &KeyRow::keysym);
  return row == std::end(kKeys) ? nullptr : row;
}

std::string modifierText(std::uint32_t modifiers, const ModifierNames& names) {
  std::string text;
  for (std::size_t i = 0; i < kModifiers.size(); ++i) {
    if ((modifiers & kModifiers[i]) != 0) text += names[i];
  }
  return text;
}

std::optional<std::uint32_t> modifierNamed(std::string_view name) {
  const auto* row = std::ranges::find_if(kModifierWords, [name](const auto& word) {
    return QByteArrayView(word.first).compare(QByteArrayView(name), Qt::CaseInsensitive) == 0;
  });
  return row == std::end(kModifierWords) ? std::nullopt : std::optional(row->second);
}

std::string combinationName(std::uint32_t keyCode, std::uint32_t modifiers,
                            const ModifierNames& names) {
  return modifierText(modifiers, names) + keyName(keyCode);
}

namespace {

constexpr std::pair<xkb_keysym_t, Qt::Key> kNamedKeys[] = {
    {XKB_KEY_Tab, Qt::Key_Tab},        {XKB_KEY_Return, Qt::Key_Return},
    {XKB_KEY_Page_Up, Qt::Key_PageUp}, {XKB_KEY_Page_Down, Qt::Key_PageDown},
    {XKB_KEY_Home, Qt::Key_Home},      {XKB_KEY_End, Qt::Key_End},
    {XKB_KEY_Up, Qt::Key_Up},          {XKB_KEY_Right, Qt::Key_Right},
    {XKB_KEY_Down, Qt::Key_Down},      {XKB_KEY_Left, Qt::Key_Left},
    {XKB_KEY_Escape, Qt::Key_Escape},  {XKB_KEY_BackSpace, Qt::Key_Backspace},
    {XKB_KEY_Delete, Qt::Key_Delete},  {XKB_KEY_Help, Qt::Key_Help},
};

constexpr std::array kQtModifiers{Qt::ControlModifier, Qt::AltModifier, Qt::ShiftModifier,
                                  Qt::MetaModifier};

std::optional<int> plainKeyOf(xkb_keysym_t keysym) {
  if (isFunctionKey(keysym)) return Qt::Key_F1 + static_cast<int>(keysym - XKB_KEY_F1);
  // Those of characters are the characters, letters in capitals.
  if (keysym <= XKB_KEY_asciitilde) return static_cast<int>(xkb_keysym_to_upper(keysym));
  const auto* named =
      std::ranges::find(kNamedKeys, keysym, &std::pair<xkb_keysym_t, Qt::Key>::first);
  if (named == std::end(kNamedKeys)) return std::nullopt;
  return named->second;
}

}  // namespace

std::optional<int> qtKeyOf(std::uint32_t keyCode, std::uint32_t modifiers) {
  const KeyRow* row = rowOf(keyCode);
  if (row == nullptr) return std::nullopt;
  auto key = plainKeyOf(row->keysym);
  const bool isLetter = row->keysym >= XKB_KEY_a && row->keysym <= XKB_KEY_z;
  const bool isOtherCharacter =
      row->keysym > XKB_KEY_space && row->keysym <= XKB_KEY_asciitilde && !isLetter;
  if (!key || (isOtherCharacter && (modifiers & shiftKey) != 0)) return std::nullopt;
  for (std::size_t i = 0; i < kModifiers.size(); ++i) {
    if ((modifiers & kModifiers[i]) != 0) *key |= static_cast<int>(kQtModifiers[i]);
  }
  return key;
}

namespace {

// What nearly every program does with Control alone.

/// Selects all, copies, finds, goes to the address, makes new, opens, prints, quits, loads again,
/// saves, opens a tab, pastes, closes, cuts, redoes, undoes; larger, smaller and back.
constexpr std::string_view kProgramsCharacters = "acflnopqrstvwxyz=-0";
/// Goes to the next tab or page, sends, deletes and passes over words, paragraphs and the text.
constexpr std::array kProgramsKeys{XKB_KEY_Tab,    XKB_KEY_Page_Up,   XKB_KEY_Page_Down,
                                   XKB_KEY_Return, XKB_KEY_BackSpace, XKB_KEY_Delete,
                                   XKB_KEY_Left,   XKB_KEY_Right,     XKB_KEY_Up,
                                   XKB_KEY_Down,   XKB_KEY_Home,      XKB_KEY_End};

bool isForPrograms(xkb_keysym_t keysym) {
  const auto isIt = [keysym](auto each) { return static_cast<xkb_keysym_t>(each) == keysym; };
  return std::ranges::any_of(kProgramsCharacters, isIt) || std::ranges::any_of(kProgramsKeys, isIt);
}

/// Whether Shift alone makes of the key what it is in a text: a capital, another character, a
/// selection. Of all keys only these are for nothing else.
bool isForTexts(xkb_keysym_t keysym) {
  return !isFunctionKey(keysym) && keysym < XKB_KEY_XF86AudioLowerVolume;
}

}  // namespace

bool isReservedForPrograms(std::uint32_t keyCode, std::uint32_t modifiers) {
  const KeyRow* row = rowOf(keyCode);
  if (modifiers == 0 || row == nullptr) return modifiers == 0;
  return (modifiers == shiftKey && isForTexts(row->keysym)) ||
         (modifiers == controlKey && isForPrograms(row->keysym));
}

}  // namespace linux_desktop
