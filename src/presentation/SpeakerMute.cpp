#include <optional>

#include "platform/foundation/Print.h"
#include "presentation/AudioProperty.h"
#include "presentation/ViewController.h"

namespace presentation {

using platform::AudioObjectID;
using platform::AudioObjectPropertyAddress;
using platform::print;

namespace {

constexpr AudioObjectPropertyAddress kDefaultOutputDevice{
    platform::kAudioHardwarePropertyDefaultOutputDevice, platform::kAudioObjectPropertyScopeGlobal,
    platform::kAudioObjectPropertyElementMain};
constexpr AudioObjectPropertyAddress kOutputMute{platform::kAudioDevicePropertyMute,
                                                 platform::kAudioDevicePropertyScopeOutput,
                                                 platform::kAudioObjectPropertyElementMain};

std::string description(std::optional<AudioObjectID> device) {
  return device ? "Optional(" + std::to_string(*device) + ")" : "nil";
}

/// The object to talk to: the device as far as it is known, else the system object.
AudioObjectID resolve(std::optional<AudioObjectID> device) {
  const AudioObjectID object = device.value_or(platform::kAudioObjectSystemObject);
  print("device");
  print(description(device));
  print(std::to_string(object));
  return object;
}

std::optional<AudioObjectID> defaultOutputDevice() {
  const AudioPropertyResult result = readAudioProperty(resolve(std::nullopt), kDefaultOutputDevice);
  if (const auto* device = std::get_if<AudioObjectID>(&result)) return *device;
  return std::nullopt;
}

}  // namespace

void ViewController::muteSpeaker() {
  const std::optional<AudioObjectID> device = defaultOutputDevice();
  print(description(device));
  const AudioObjectID object = resolve(device);
  const AudioPropertyResult before = readAudioProperty(object, kOutputMute);
  print("*****************");
  print(presentation::description(before));
  print(presentation::description(writeAudioProperty(1, object, kOutputMute)));
}

void ViewController::unmuteSpeaker() {
  const AudioObjectID object = resolve(defaultOutputDevice());
  print(presentation::description(writeAudioProperty(0, object, kOutputMute)));
}

}  // namespace presentation
