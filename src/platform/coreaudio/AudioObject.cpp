#include "platform/coreaudio/AudioObject.h"

#include <cstring>

#include "platform/Runtime.h"

namespace platform {
namespace {

port::AudioObjects* audioObjects() {
  return Runtime::current().desktop().audioObjects;
}

}  // namespace

std::string description(const AudioObjectPropertyAddress& address) {
  return "AudioObjectPropertyAddress(mSelector: " + std::to_string(address.mSelector) +
         ", mScope: " + std::to_string(address.mScope) +
         ", mElement: " + std::to_string(address.mElement) + ")";
}

bool AudioObjectHasProperty(AudioObjectID object, const AudioObjectPropertyAddress& address) {
  const port::AudioObjects* objects = audioObjects();
  return objects != nullptr && objects->hasProperty(object, address);
}

OSStatus AudioObjectIsPropertySettable(AudioObjectID object,
                                       const AudioObjectPropertyAddress& address,
                                       bool& outIsSettable) {
  const port::AudioObjects* objects = audioObjects();
  if (objects == nullptr) return kAudioHardwareNotRunningError;
  return objects->isPropertySettable(object, address, outIsSettable);
}

OSStatus AudioObjectGetPropertyData(AudioObjectID object, const AudioObjectPropertyAddress& address,
                                    std::uint32_t, const void*, std::uint32_t& ioDataSize,
                                    void* outData) {
  const port::AudioObjects* objects = audioObjects();
  if (objects == nullptr) return kAudioHardwareNotRunningError;
  std::uint32_t value = 0;
  if (ioDataSize < sizeof value) return kAudioHardwareBadPropertySizeError;
  const OSStatus status = objects->propertyData(object, address, value);
  if (status != noErr) return status;
  std::memcpy(outData, &value, sizeof value);
  ioDataSize = sizeof value;
  return noErr;
}

OSStatus AudioObjectSetPropertyData(AudioObjectID object, const AudioObjectPropertyAddress& address,
                                    std::uint32_t, const void*, std::uint32_t dataSize,
                                    const void* data) {
  port::AudioObjects* objects = audioObjects();
  if (objects == nullptr) return kAudioHardwareNotRunningError;
  std::uint32_t value = 0;
  if (dataSize != sizeof value) return kAudioHardwareBadPropertySizeError;
  std::memcpy(&value, data, sizeof value);
  return objects->setPropertyData(object, address, value);
}

}  // namespace platform
