#include "desktop/linux/audio/PulseSound.h"

namespace linux_desktop {

using platform::AudioObjectID;
using platform::AudioObjectPropertyAddress;
using platform::OSStatus;

namespace {

constexpr AudioObjectPropertyAddress kDefaultOutput{
    platform::kAudioHardwarePropertyDefaultOutputDevice, platform::kAudioObjectPropertyScopeGlobal,
    platform::kAudioObjectPropertyElementMain};
constexpr AudioObjectPropertyAddress kMute{platform::kAudioDevicePropertyMute,
                                           platform::kAudioDevicePropertyScopeOutput,
                                           platform::kAudioObjectPropertyElementMain};

OSStatus statusFor(PulseServer::Answer answer) {
  switch (answer) {
    case PulseServer::Answer::Done:
      return platform::noErr;
    case PulseServer::Answer::NotRunning:
      return platform::kAudioHardwareNotRunningError;
    case PulseServer::Answer::NoSuchDevice:
      return platform::kAudioHardwareBadObjectError;
    case PulseServer::Answer::Refused:
      break;
  }
  return platform::kAudioHardwareUnspecifiedError;
}

class PulseAudioObjects final : public platform::port::AudioObjects {
 public:
  explicit PulseAudioObjects(PulseServer& server) : server_(server) {}

  [[nodiscard]] bool hasProperty(AudioObjectID object,
                                 const AudioObjectPropertyAddress& address) const override {
    return look(object, address, server_.deadlineFromNow()).status == platform::noErr;
  }

  [[nodiscard]] OSStatus isPropertySettable(AudioObjectID object,
                                            const AudioObjectPropertyAddress& address,
                                            bool& settable) const override {
    const Property property = look(object, address, server_.deadlineFromNow());
    if (property.status == platform::noErr) settable = property.settable;
    return property.status;
  }

  [[nodiscard]] OSStatus propertyData(AudioObjectID object,
                                      const AudioObjectPropertyAddress& address,
                                      std::uint32_t& value) const override {
    const Property property = look(object, address, server_.deadlineFromNow());
    if (property.status == platform::noErr) value = property.value;
    return property.status;
  }

  [[nodiscard]] OSStatus setPropertyData(AudioObjectID object,
                                         const AudioObjectPropertyAddress& address,
                                         std::uint32_t value) override {
    const PulseServer::Deadline deadline = server_.deadlineFromNow();
    const Property property = look(object, address, deadline);
    if (property.status != platform::noErr) return property.status;
    if (!property.settable) return platform::kAudioHardwareIllegalOperationError;
    return statusFor(server_.setMuted(DeviceKind::Sink, object, value != 0, deadline));
  }

 private:
  struct Property {
    OSStatus status = platform::noErr;  // the rest counts only then
    std::uint32_t value = 0;
    bool settable = false;
  };
  [[nodiscard]] Property look(AudioObjectID object, const AudioObjectPropertyAddress& address,
                              PulseServer::Deadline deadline) const {
    if (!server_.reachable(deadline)) return {.status = platform::kAudioHardwareNotRunningError};
    return object == platform::kAudioObjectSystemObject ? lookAtSystem(address)
                                                        : lookAtDevice(object, address);
  }

  [[nodiscard]] Property lookAtSystem(const AudioObjectPropertyAddress& address) const {
    if (address != kDefaultOutput) return {.status = platform::kAudioHardwareUnknownPropertyError};
    const std::optional<Device> sink = server_.outputDevice();
    if (!sink) return {.status = platform::kAudioHardwareUnknownPropertyError};
    return {.value = sink->id};
  }

  [[nodiscard]] Property lookAtDevice(AudioObjectID device,
                                      const AudioObjectPropertyAddress& address) const {
    const std::optional<Device> sink = server_.sink(device);
    if (!sink) return {.status = platform::kAudioHardwareBadObjectError};
    if (address != kMute) return {.status = platform::kAudioHardwareUnknownPropertyError};
    return {.value = sink->muted ? 1U : 0U, .settable = true};
  }

  PulseServer& server_;
};

}  // namespace

std::unique_ptr<platform::port::AudioObjects> pulseAudioObjects(PulseServer& server) {
  return std::make_unique<PulseAudioObjects>(server);
}

}  // namespace linux_desktop
