#include "desktop/linux/keys/QtKey.h"

#include <QtCore/qnamespace.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "desktop/linux/keys/KeyTable.h"
#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
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

constexpr std::pair<std::uint32_t, Qt::KeyboardModifier> kModifiers[] = {
    {platform::controlKey, Qt::ControlModifier},
    {platform::optionKey, Qt::AltModifier},
    {platform::shiftKey, Qt::ShiftModifier},
    {platform::cmdKey, Qt::MetaModifier},
};

std::optional<int> plainKeyOf(xkb_keysym_t keysym) {
  if (keysym >= XKB_KEY_F1 && keysym <= XKB_KEY_F20) {
    return Qt::Key_F1 + static_cast<int>(keysym - XKB_KEY_F1);
  }
  // Those of characters are the characters, letters in capitals.
  if (keysym <= XKB_KEY_asciitilde) return static_cast<int>(xkb_keysym_to_upper(keysym));
  const auto* named =
      std::ranges::find(kNamedKeys, keysym, &std::pair<xkb_keysym_t, Qt::Key>::first);
  if (named == std::end(kNamedKeys)) return std::nullopt;
  return named->second;
}

}  // namespace

std::optional<int> qtKeyOf(std::uint32_t keyCode, std::uint32_t modifiers) {
  const auto keys = keyTable();
  const auto row = std::ranges::find(keys, keyCode, &KeyRow::code);
  if (row == keys.end()) return std::nullopt;
  auto key = plainKeyOf(row->keysym);
  const bool isLetter = row->keysym >= XKB_KEY_a && row->keysym <= XKB_KEY_z;
  const bool isOtherCharacter =
      row->keysym > XKB_KEY_space && row->keysym <= XKB_KEY_asciitilde && !isLetter;
  if (!key || (isOtherCharacter && (modifiers & platform::shiftKey) != 0)) return std::nullopt;
  for (const auto& [bit, modifier] : kModifiers) {
    if ((modifiers & bit) != 0) *key |= static_cast<int>(modifier);
  }
  return key;
}

}  // namespace linux_desktop
