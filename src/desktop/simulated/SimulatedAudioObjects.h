#pragma once

#include <map>
#include <optional>

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

  [[nodiscard]] bool hasProperty(Object object, const Address& address) const override;
  [[nodiscard]] Status isPropertySettable(Object object, const Address& address,
                                          bool& settable) const override;
  [[nodiscard]] Status propertyData(Object object, const Address& address,
                                    std::uint32_t& value) const override;
  [[nodiscard]] Status setPropertyData(Object object, const Address& address,
                                       std::uint32_t value) override;

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
  [[nodiscard]] Property* property(Object object, const Address& address);
  void setProperty(Object object, const Address& address, Property property);
  void removeProperty(Object object, const Address& address);

  /// A device with a mute control on its output.
  void addOutputDevice(Object device, bool muted = false);
  void setDefaultOutputDevice(std::optional<Object> device);
  [[nodiscard]] std::optional<bool> isMuted(Object device);

 private:
  [[nodiscard]] const Property* find(Object object, const Address& address) const;

  CallLog& log_;
  std::map<std::pair<Object, Address>, Property> properties_;
};

}  // namespace simulated
