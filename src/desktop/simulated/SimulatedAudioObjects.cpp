#include "desktop/simulated/SimulatedAudioObjects.h"

#include <string>

namespace simulated {
namespace {

using Address = platform::AudioObjectPropertyAddress;

constexpr Address kDefaultOutput{platform::kAudioHardwarePropertyDefaultOutputDevice,
                                 platform::kAudioObjectPropertyScopeGlobal, 0};
constexpr Address kMute{platform::kAudioDevicePropertyMute,
                        platform::kAudioDevicePropertyScopeOutput, 0};

std::string fourCharText(std::uint32_t code) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(code >> shift & 0xff);
  return text;
}

}  // namespace

const SimulatedAudioObjects::Property* SimulatedAudioObjects::find(Object object,
                                                                   const Address& address) const {
  const auto found = properties_.find({object, address});
  return found == properties_.end() ? nullptr : &found->second;
}

bool SimulatedAudioObjects::hasProperty(Object object, const Address& address) const {
  return find(object, address) != nullptr;
}

platform::OSStatus SimulatedAudioObjects::isPropertySettable(Object object, const Address& address,
                                                             bool& settable) const {
  const Property* property = find(object, address);
  if (property == nullptr) return platform::kAudioHardwareUnknownPropertyError;
  if (property->settableStatus == platform::noErr) settable = property->settable;
  return property->settableStatus;
}

platform::OSStatus SimulatedAudioObjects::propertyData(Object object, const Address& address,
                                                       std::uint32_t& value) const {
  const Property* property = find(object, address);
  if (property == nullptr) return platform::kAudioHardwareUnknownPropertyError;
  if (property->readStatus == platform::noErr) value = property->value;
  return property->readStatus;
}

platform::OSStatus SimulatedAudioObjects::setPropertyData(Object object, const Address& address,
                                                          std::uint32_t value) {
  log_.add("audio.set " + std::to_string(object) + " " + fourCharText(address.mSelector) + " " +
           std::to_string(value));
  Property* found = property(object, address);
  if (found == nullptr) return platform::kAudioHardwareUnknownPropertyError;
  if (found->writeStatus == platform::noErr) found->value = value;
  return found->writeStatus;
}

SimulatedAudioObjects::Property* SimulatedAudioObjects::property(Object object,
                                                                 const Address& address) {
  const auto found = properties_.find({object, address});
  return found == properties_.end() ? nullptr : &found->second;
}

void SimulatedAudioObjects::setProperty(Object object, const Address& address, Property property) {
  properties_.insert_or_assign({object, address}, property);
}

void SimulatedAudioObjects::removeProperty(Object object, const Address& address) {
  properties_.erase({object, address});
}

void SimulatedAudioObjects::addOutputDevice(Object device, bool muted) {
  setProperty(device, kMute, {.value = muted ? 1U : 0U});
}

void SimulatedAudioObjects::setDefaultOutputDevice(std::optional<Object> device) {
  if (device)
    setProperty(platform::kAudioObjectSystemObject, kDefaultOutput, {.value = *device});
  else
    removeProperty(platform::kAudioObjectSystemObject, kDefaultOutput);
}

std::optional<bool> SimulatedAudioObjects::isMuted(Object device) {
  const Property* mute = property(device, kMute);
  return mute == nullptr ? std::nullopt : std::optional(mute->value != 0);
}

}  // namespace simulated
