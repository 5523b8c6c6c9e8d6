#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "platform/coreaudio/AudioObject.h"
#include "platform/foundation/Process.h"
#include "presentation/ViewController.h"

namespace presentation {

using platform::AudioObjectID;
using platform::AudioObjectPropertyAddress;
using platform::noErr;
using platform::OSStatus;
using platform::print;

namespace {

// --- One property of an audio object ---

/// Why an audio property could not be read or written.
struct AudioPropertyError {
  enum class Case {
    GetPropertyData,
    SetPropertyData,
    NoProperty,
    PropertyNotSettable,
    EmptyResult
  };

  Case error = Case::NoProperty;
  /// The platform's; only with GetPropertyData and SetPropertyData.
  std::optional<OSStatus> status = std::nullopt;
};

using AudioPropertyResult = std::variant<std::uint32_t, AudioPropertyError>;
using Case = AudioPropertyError::Case;

/// In the order of the enumeration.
constexpr std::array<std::string_view, 5> kCases{"GetPropertyData", "SetPropertyData", "NoProperty",
                                                 "PropertyNotSettable", "EmptyResult"};

std::string description(const AudioPropertyError& error) {
  const std::string text(kCases.at(static_cast<std::size_t>(error.error)));
  return error.status ? text + "(" + std::to_string(*error.status) + ")" : text;
}

/// "1,,,, AudioObjectPropertyAddress(…)"
std::string objectAndAddress(AudioObjectID object, const AudioObjectPropertyAddress& address) {
  return std::to_string(object) + ",,,, " + platform::description(address);
}

/// "success(1)", "failure(NoProperty)", "failure(SetPropertyData(560947818))".
std::string description(const AudioPropertyResult& result) {
  if (const auto* value = std::get_if<std::uint32_t>(&result)) {
    return "success(" + std::to_string(*value) + ")";
  }
  return "failure(" + description(std::get<AudioPropertyError>(result)) + ")";
}

/// Reads one 32-bit property, and prints every step.
AudioPropertyResult readAudioProperty(AudioObjectID object,
                                      const AudioObjectPropertyAddress& address) {
  print(std::to_string(object));
  print(platform::description(address));
  if (!AudioObjectHasProperty(object, address)) {
    print("error aaya1 " + objectAndAddress(object, address));
    return AudioPropertyError{Case::NoProperty};
  }
  std::uint32_t value = 0;
  std::uint32_t size = sizeof value;
  const OSStatus status = AudioObjectGetPropertyData(object, address, 0, nullptr, size, &value);
  if (status != noErr) {
    print("error aaya2 " + objectAndAddress(object, address) + "....." + std::to_string(status));
    return AudioPropertyError{Case::GetPropertyData, status};
  }
  print("result 1 " + std::to_string(value));
  print("result aaya " + std::to_string(value));
  return value;
}

/// Writes one 32-bit property. The write is attempted whenever the object can be asked whether it
/// is settable, whatever it answers.
AudioPropertyResult writeAudioProperty(std::uint32_t value, AudioObjectID object,
                                       const AudioObjectPropertyAddress& address) {
  if (!AudioObjectHasProperty(object, address)) return AudioPropertyError{Case::NoProperty};
  bool settable = false;
  if (AudioObjectIsPropertySettable(object, address, settable) != noErr) {
    return AudioPropertyError{Case::PropertyNotSettable};
  }
  const OSStatus status =
      AudioObjectSetPropertyData(object, address, 0, nullptr, sizeof value, &value);
  if (status != noErr) return AudioPropertyError{Case::SetPropertyData, status};
  return value;
}

// --- The default output device ---

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
  print(description(before));
  print(description(writeAudioProperty(1, object, kOutputMute)));
}

void ViewController::unmuteSpeaker() {
  const AudioObjectID object = resolve(defaultOutputDevice());
  print(description(writeAudioProperty(0, object, kOutputMute)));
}

}  // namespace presentation
