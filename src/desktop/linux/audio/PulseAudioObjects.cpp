#include "desktop/linux/audio/PulseAudioObjects.h"

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

}  // namespace

bool PulseAudioObjects::hasProperty(AudioObjectID object,
                                    const AudioObjectPropertyAddress& address) const {
  return look(object, address, server_.deadlineFromNow()).status == platform::noErr;
}

OSStatus PulseAudioObjects::isPropertySettable(AudioObjectID object,
                                               const AudioObjectPropertyAddress& address,
                                               bool& settable) const {
  const Property property = look(object, address, server_.deadlineFromNow());
  if (property.status == platform::noErr) settable = property.settable;
  return property.status;
}

OSStatus PulseAudioObjects::propertyData(AudioObjectID object,
                                         const AudioObjectPropertyAddress& address,
                                         std::uint32_t& value) const {
  const Property property = look(object, address, server_.deadlineFromNow());
  if (property.status == platform::noErr) value = property.value;
  return property.status;
}

OSStatus PulseAudioObjects::setPropertyData(AudioObjectID object,
                                            const AudioObjectPropertyAddress& address,
                                            std::uint32_t value) {
  const PulseServer::Deadline deadline = server_.deadlineFromNow();
  const Property property = look(object, address, deadline);
  if (property.status != platform::noErr) return property.status;
  if (!property.settable) return platform::kAudioHardwareIllegalOperationError;
  return statusFor(server_.setMuted(DeviceKind::Sink, object, value != 0, deadline));
}

PulseAudioObjects::Property PulseAudioObjects::look(AudioObjectID object,
                                                    const AudioObjectPropertyAddress& address,
                                                    PulseServer::Deadline deadline) const {
  if (!server_.reachable(deadline)) return {.status = platform::kAudioHardwareNotRunningError};
  return object == platform::kAudioObjectSystemObject ? lookAtSystem(address)
                                                      : lookAtDevice(object, address);
}

PulseAudioObjects::Property PulseAudioObjects::lookAtSystem(
    const AudioObjectPropertyAddress& address) const {
  if (address != kDefaultOutput) return {.status = platform::kAudioHardwareUnknownPropertyError};
  const std::optional<Device> sink = server_.outputDevice();
  if (!sink) return {.status = platform::kAudioHardwareUnknownPropertyError};
  return {.value = sink->id};
}

PulseAudioObjects::Property PulseAudioObjects::lookAtDevice(
    AudioObjectID device, const AudioObjectPropertyAddress& address) const {
  const std::optional<Device> sink = server_.sink(device);
  if (!sink) return {.status = platform::kAudioHardwareBadObjectError};
  if (address != kMute) return {.status = platform::kAudioHardwareUnknownPropertyError};
  return {.value = sink->muted ? 1U : 0U, .settable = true};
}

}  // namespace linux_desktop
