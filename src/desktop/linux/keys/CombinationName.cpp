#include "desktop/linux/keys/CombinationName.h"

#include <algorithm>
#include <array>
#include <utility>

#include "desktop/linux/keys/KeyTable.h"
#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
namespace {

constexpr std::pair<std::uint32_t, const char*> kModifierNames[] = {
    {platform::controlKey, "Control+"},
    {platform::optionKey, "Alt+"},
    {platform::shiftKey, "Shift+"},
    {platform::cmdKey, "Super+"},
};

std::string keyName(std::uint32_t code) {
  const auto keys = keyTable();
  const auto row = std::ranges::find(keys, code, &KeyRow::code);
  std::array<char, 64> name{};
  if (row == keys.end() || xkb_keysym_get_name(row->keysym, name.data(), name.size()) < 0) {
    return "key " + std::to_string(code);
  }
  return name.data();
}

}  // namespace

std::string combinationName(std::uint32_t keyCode, std::uint32_t modifiers) {
  std::string name;
  for (const auto& [bit, text] : kModifierNames) {
    if ((modifiers & bit) != 0) name += text;
  }
  return name + keyName(keyCode);
}

}  // namespace linux_desktop
