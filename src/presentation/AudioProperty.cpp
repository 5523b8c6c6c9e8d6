#include "presentation/AudioProperty.h"

#include <array>
#include <string_view>

#include "platform/foundation/Print.h"

namespace presentation {

using platform::AudioObjectID;
using platform::AudioObjectPropertyAddress;
using platform::noErr;
using platform::OSStatus;
using platform::print;
using Case = AudioPropertyError::Case;

namespace {

/// By case, in the order of the enumeration.
struct CaseRow {
  std::string_view name;
  bool hasStatus;
};

constexpr std::array<CaseRow, 5> kCases{{
    {"GetPropertyData", true},
    {"SetPropertyData", true},
    {"NoProperty", false},
    {"PropertyNotSettable", false},
    {"EmptyResult", false},
}};

std::string description(const AudioPropertyError& error) {
  const CaseRow& row = kCases.at(static_cast<std::size_t>(error.error));
  std::string text(row.name);
  return row.hasStatus ? text + "(" + std::to_string(error.status) + ")" : text;
}

/// "1,,,, AudioObjectPropertyAddress(…)"
std::string objectAndAddress(AudioObjectID object, const AudioObjectPropertyAddress& address) {
  return std::to_string(object) + ",,,, " + platform::description(address);
}

}  // namespace

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

std::string description(const AudioPropertyResult& result) {
  if (const auto* value = std::get_if<std::uint32_t>(&result)) {
    return "success(" + std::to_string(*value) + ")";
  }
  return "failure(" + description(std::get<AudioPropertyError>(result)) + ")";
}

}  // namespace presentation
