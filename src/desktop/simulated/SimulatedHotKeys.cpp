#include "desktop/simulated/SimulatedHotKeys.h"

#include <algorithm>

#include "platform/carbon/CarbonEvents.h"

namespace simulated {

using platform::port::HotKeyNumber;

platform::OSStatus SimulatedHotKeys::registerHotKey(HotKeyNumber number, std::uint32_t keyCode,
                                                    std::uint32_t modifiers,
                                                    const std::string& purpose) {
  const Combination combination{keyCode, modifiers};
  log_.add("hotKeys.register " + std::to_string(keyCode) + " " + std::to_string(modifiers));
  if (impossible.contains(combination) || reserved.contains(combination)) {
    return platform::eventHotKeyInvalidErr;
  }
  if (heldByOthers.contains(combination) || numberOf(asked_, combination) != 0) {
    return platform::eventHotKeyExistsErr;
  }
  purposes.insert_or_assign(combination, purpose);
  asked_.emplace(number, combination);
  if (!assignsKeys) held_.emplace(number, combination);
  return platform::noErr;
}

void SimulatedHotKeys::unregisterHotKey(HotKeyNumber number) {
  const auto found = asked_.find(number);
  if (found == asked_.end()) return;
  log_.add("hotKeys.unregister " + std::to_string(found->second.keyCode) + " " +
           std::to_string(found->second.modifiers));
  forget(number);
}

void SimulatedHotKeys::assign(Combination asked, Combination given, const std::string& name) {
  const HotKeyNumber number = numberOf(asked_, asked);
  if (number == 0 || client_ == nullptr) return;
  held_.insert_or_assign(number, given);
  client_->hotKeyAssigned(number, name);
}

void SimulatedHotKeys::refuse(Combination asked) {
  const HotKeyNumber number = numberOf(asked_, asked);
  if (number == 0 || client_ == nullptr) return;
  forget(number);
  client_->hotKeyAssigned(number, std::nullopt);
}

void SimulatedHotKeys::forget(HotKeyNumber number) {
  asked_.erase(number);
  held_.erase(number);
  down_.erase(number);
}

void SimulatedHotKeys::press(Combination combination) {
  const HotKeyNumber number = numberOf(held_, combination);
  if (number == 0 || client_ == nullptr) return;
  down_.insert(number);
  client_->hotKeyPressed(number);
}

void SimulatedHotKeys::release(Combination combination) {
  const HotKeyNumber number = numberOf(held_, combination);
  if (down_.erase(number) != 0 && client_ != nullptr) client_->hotKeyReleased(number);
}

std::set<SimulatedHotKeys::Combination> SimulatedHotKeys::held() const {
  std::set<Combination> combinations;
  for (const auto& [number, combination] : held_) combinations.insert(combination);
  return combinations;
}

HotKeyNumber SimulatedHotKeys::numberOf(const Numbers& numbers, Combination combination) {
  const auto found = std::ranges::find(numbers, combination, &Numbers::value_type::second);
  return found == numbers.end() ? 0 : found->first;
}

}  // namespace simulated
