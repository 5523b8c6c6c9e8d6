#include "desktop/simulated/SimulatedHotKeys.h"

#include "platform/carbon/CarbonEvents.h"

namespace simulated {

using platform::port::HotKeyNumber;

platform::OSStatus SimulatedHotKeys::registerHotKey(HotKeyNumber number, std::uint32_t keyCode,
                                                    std::uint32_t modifiers) {
  const Combination combination{keyCode, modifiers};
  log_.add("hotKeys.register " + std::to_string(keyCode) + " " + std::to_string(modifiers));
  if (impossible.contains(combination) || reserved.contains(combination)) {
    return platform::eventHotKeyInvalidErr;
  }
  if (heldByOthers.contains(combination) || numberOf(combination) != 0) {
    return platform::eventHotKeyExistsErr;
  }
  registered_.emplace(number, combination);
  return platform::noErr;
}

void SimulatedHotKeys::unregisterHotKey(HotKeyNumber number) {
  const auto found = registered_.find(number);
  if (found == registered_.end()) return;
  log_.add("hotKeys.unregister " + std::to_string(found->second.keyCode) + " " +
           std::to_string(found->second.modifiers));
  down_.erase(number);
  registered_.erase(found);
}

void SimulatedHotKeys::press(Combination combination) {
  const HotKeyNumber number = numberOf(combination);
  if (number == 0 || client_ == nullptr) return;
  down_.insert(number);
  client_->hotKeyPressed(number);
}

void SimulatedHotKeys::release(Combination combination) {
  const HotKeyNumber number = numberOf(combination);
  if (down_.erase(number) != 0 && client_ != nullptr) client_->hotKeyReleased(number);
}

std::set<SimulatedHotKeys::Combination> SimulatedHotKeys::held() const {
  std::set<Combination> combinations;
  for (const auto& [number, combination] : registered_) combinations.insert(combination);
  return combinations;
}

HotKeyNumber SimulatedHotKeys::numberOf(Combination combination) const {
  for (const auto& [number, held] : registered_) {
    if (held == combination) return number;
  }
  return 0;
}

}  // namespace simulated
