#include "desktop/linux/keys/SessionHotKeys.h"

#include "desktop/linux/keys/KeyTable.h"
#include "platform/carbon/CarbonEvents.h"

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

SessionHotKeys::SessionHotKeys(platform::port::HotKeys* others) : others_(others) {
  if (KdeHotKeys::isSession()) kde_.emplace();
}

void SessionHotKeys::setClient(platform::port::HotKeysClient* client) {
  if (kde_) kde_->setClient(client);
  if (others_ != nullptr) others_->setClient(client);
}

platform::OSStatus SessionHotKeys::registerHotKey(platform::port::HotKeyNumber number,
                                                  std::uint32_t keyCode, std::uint32_t modifiers,
                                                  const std::string& purpose) {
  if (isReserved(keyCode, modifiers)) return platform::eventHotKeyInvalidErr;
  if (kde_) {
    if (const auto status = kde_->registerHotKey(number, keyCode, modifiers, purpose))
      return *status;
  }
  if (others_ == nullptr) return platform::eventHotKeyInvalidErr;
  return others_->registerHotKey(number, keyCode, modifiers, purpose);
}

void SessionHotKeys::unregisterHotKey(platform::port::HotKeyNumber number) {
  // Whoever does not know the number does nothing.
  if (kde_) kde_->unregisterHotKey(number);
  if (others_ != nullptr) others_->unregisterHotKey(number);
}

bool SessionHotKeys::isReserved(std::uint32_t keyCode, std::uint32_t modifiers) const {
  return isReservedForPrograms(keyCode, modifiers);
}

}  // namespace linux_desktop
