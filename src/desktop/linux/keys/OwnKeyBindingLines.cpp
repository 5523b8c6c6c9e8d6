#include "desktop/linux/keys/OwnKeyBindingLines.h"

#include <QString>

#include "desktop/linux/keys/KeyTable.h"

namespace linux_desktop {
namespace {

constexpr ModifierNames kSwayModifiers{"Ctrl+", "Alt+", "Shift+", "Mod4+"};
constexpr ModifierNames kLabwcModifiers{"C-", "A-", "S-", "W-"};

}  // namespace

std::string OwnKeyBindingLines::bindingOf(std::uint32_t keyCode, std::uint32_t modifiers,
                                          std::string_view action) const {
  std::string command = "gapplication action org.calmdeck.Calmdeck " + std::string(action);
  if (qEnvironmentVariableIsSet("SWAYSOCK"))
    return "bindsym " + combinationName(keyCode, modifiers, kSwayModifiers) + " exec " + command;
  if (qEnvironmentVariableIsSet("LABWC_PID")) {
    return R"(<keybind key=")" + combinationName(keyCode, modifiers, kLabwcModifiers) +
           R"("><action name="Execute" command=")" + command + R"("/></keybind>)";
  }
  return command;
}

}  // namespace linux_desktop
