#include "desktop/linux/keys/OwnKeyBindingLines.h"

#include <QString>
#include <span>
#include <utility>

#include "desktop/linux/keys/KeyTable.h"
#include "platform/carbon/KeyCodes.h"

namespace linux_desktop {
namespace {

using ModifierNames = std::span<const std::pair<std::uint32_t, const char*>>;

constexpr std::pair<std::uint32_t, const char*> kSwayModifiers[] = {
    {platform::controlKey, "Ctrl+"},
    {platform::optionKey, "Alt+"},
    {platform::shiftKey, "Shift+"},
    {platform::cmdKey, "Mod4+"},
};
constexpr std::pair<std::uint32_t, const char*> kLabwcModifiers[] = {
    {platform::controlKey, "C-"},
    {platform::optionKey, "A-"},
    {platform::shiftKey, "S-"},
    {platform::cmdKey, "W-"},
};

std::string keys(std::uint32_t keyCode, std::uint32_t modifiers, ModifierNames names) {
  std::string text;
  for (const auto& [bit, name] : names) {
    if ((modifiers & bit) != 0) text += name;
  }
  return text + combinationName(keyCode, 0);
}

}  // namespace

std::string OwnKeyBindingLines::bindingOf(std::uint32_t keyCode, std::uint32_t modifiers,
                                          std::string_view action) const {
  std::string command = "gapplication action org.calmdeck.Calmdeck " + std::string(action);
  if (qEnvironmentVariableIsSet("SWAYSOCK"))
    return "bindsym " + keys(keyCode, modifiers, kSwayModifiers) + " exec " + command;
  if (qEnvironmentVariableIsSet("LABWC_PID")) {
    return R"(<keybind key=")" + keys(keyCode, modifiers, kLabwcModifiers) +
           R"("><action name="Execute" command=")" + command + R"("/></keybind>)";
  }
  return command;
}

}  // namespace linux_desktop
