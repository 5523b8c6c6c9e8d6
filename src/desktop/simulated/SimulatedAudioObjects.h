#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "desktop/simulated/CallLog.h"
#include "platform/port/AudioObjects.h"

namespace simulated {

/// Audio objects as a table of values.
class SimulatedAudioObjects final : public platform::port::AudioObjects {
 public:
  using Object = platform::AudioObjectID;
  using Address = platform::AudioObjectPropertyAddress;
  using Status = platform::OSStatus;

  explicit SimulatedAudioObjects(CallLog& log) : log_(log) {}

  [[nodiscard]] bool hasProperty(Object object, const Address& address) const override {
    return find(object, address) != nullptr;
  }
  [[nodiscard]] Status isPropertySettable(Object object, const Address& address,
                                          bool& settable) const override {
    const Property* property = find(object, address);
    if (property == nullptr) return platform::kAudioHardwareUnknownPropertyError;
    if (property->settableStatus == platform::noErr) settable = property->settable;
    return property->settableStatus;
  }
  [[nodiscard]] Status propertyData(Object object, const Address& address,
                                    std::uint32_t& value) const override {
    const Property* property = find(object, address);
    if (property == nullptr) return platform::kAudioHardwareUnknownPropertyError;
    if (property->readStatus == platform::noErr) value = property->value;
    return property->readStatus;
  }
  [[nodiscard]] Status setPropertyData(Object object, const Address& address,
                                       std::uint32_t value) override {
    log_.add("audio.set " + std::to_string(object) + " " + fourCharText(address.mSelector) + " " +
             std::to_string(value));
    Property* found = property(object, address);
    if (found == nullptr) return platform::kAudioHardwareUnknownPropertyError;
    if (found->writeStatus == platform::noErr) found->value = value;
    return found->writeStatus;
  }

  // --- Levers ---
  /// One property, with the statuses that the calls on it return.
  struct Property {
    std::uint32_t value = 0;
    bool settable = true;
    Status settableStatus = platform::noErr;
    Status readStatus = platform::noErr;
    Status writeStatus = platform::noErr;
  };
  /// Null when there is none.
  [[nodiscard]] Property* property(Object object, const Address& address) {
    const auto found = properties_.find({object, address});
    return found == properties_.end() ? nullptr : &found->second;
  }
  void setProperty(Object object, const Address& address, Property property) {
    properties_.insert_or_assign({object, address}, property);
  }
  void removeProperty(Object object, const Address& address) {
    properties_.erase({object, address});
  }

  /// A device with a mute control on its output.
  void addOutputDevice(Object device, bool muted = false) {
    setProperty(device, kMute, {.value = muted ? 1U : 0U});
  }
  void setDefaultOutputDevice(std::optional<Object> device) {
    if (device)
      setProperty(platform::kAudioObjectSystemObject, kDefaultOutput, {.value = *device});
    else
      removeProperty(platform::kAudioObjectSystemObject, kDefaultOutput);
  }
  [[nodiscard]] std::optional<bool> isMuted(Object device) {
    const Property* mute = property(device, kMute);
    return mute == nullptr ? std::nullopt : std::optional(mute->value != 0);
  }

 private:
  static constexpr Address kDefaultOutput{platform::kAudioHardwarePropertyDefaultOutputDevice,
                                          platform::kAudioObjectPropertyScopeGlobal, 0};
  static constexpr Address kMute{platform::kAudioDevicePropertyMute,
                                 platform::kAudioDevicePropertyScopeOutput, 0};

  [[nodiscard]] static std::string fourCharText(std::uint32_t code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(code >> shift & 0xff);
    return text;
  }
  [[nodiscard]] const Property* find(Object object, const Address& address) const {
    const auto found = properties_.find({object, address});
    return found == properties_.end() ? nullptr : &found->second;
  }

  CallLog& log_;
  std::map<std::pair<Object, Address>, Property> properties_;
};

}  // namespace simulated
