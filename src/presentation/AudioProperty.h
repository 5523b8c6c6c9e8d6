#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "platform/coreaudio/AudioObject.h"

namespace presentation {

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
  /// The platform's status; only with GetPropertyData and SetPropertyData.
  platform::OSStatus status = platform::noErr;

  bool operator==(const AudioPropertyError&) const = default;
};

using AudioPropertyResult = std::variant<std::uint32_t, AudioPropertyError>;

/// Reads one 32-bit property, and prints every step.
[[nodiscard]] AudioPropertyResult readAudioProperty(
    platform::AudioObjectID object, const platform::AudioObjectPropertyAddress& address);

/// Writes one 32-bit property. The write is attempted whenever the object can be asked whether it
/// is settable, whatever it answers.
[[nodiscard]] AudioPropertyResult writeAudioProperty(
    std::uint32_t value, platform::AudioObjectID object,
    const platform::AudioObjectPropertyAddress& address);

/// "success(1)", "failure(NoProperty)", "failure(SetPropertyData(560947818))".
[[nodiscard]] std::string description(const AudioPropertyResult& result);

}  // namespace presentation
