#pragma once

#include <compare>
#include <cstdint>
#include <string>

#include "platform/foundation/SmallValues.h"

namespace platform {

using AudioObjectID = std::uint32_t;

// The status codes of the audio hardware services; each is a four-character code.
inline constexpr OSStatus kAudioHardwareNotRunningError =
    static_cast<OSStatus>(fourCharCode("stop"));
inline constexpr OSStatus kAudioHardwareUnspecifiedError =
    static_cast<OSStatus>(fourCharCode("what"));
inline constexpr OSStatus kAudioHardwareUnknownPropertyError =
    static_cast<OSStatus>(fourCharCode("who?"));
inline constexpr OSStatus kAudioHardwareBadObjectError =
    static_cast<OSStatus>(fourCharCode("!obj"));
inline constexpr OSStatus kAudioHardwareBadPropertySizeError =
    static_cast<OSStatus>(fourCharCode("!siz"));
inline constexpr OSStatus kAudioHardwareIllegalOperationError =
    static_cast<OSStatus>(fourCharCode("nope"));

inline constexpr AudioObjectID kAudioObjectSystemObject = 1;
inline constexpr std::uint32_t kAudioHardwarePropertyDefaultOutputDevice = fourCharCode("dOut");
inline constexpr std::uint32_t kAudioObjectPropertyScopeGlobal = fourCharCode("glob");
inline constexpr std::uint32_t kAudioDevicePropertyMute = fourCharCode("mute");
inline constexpr std::uint32_t kAudioDevicePropertyScopeOutput = fourCharCode("outp");
inline constexpr std::uint32_t kAudioObjectPropertyElementMain = 0;

/// Names one property of an audio object.
struct AudioObjectPropertyAddress {
  std::uint32_t mSelector = 0;
  std::uint32_t mScope = 0;
  std::uint32_t mElement = 0;

  auto operator<=>(const AudioObjectPropertyAddress&) const = default;
};

/// The platform's default textual form of an address, its three fields in decimal.
[[nodiscard]] std::string description(const AudioObjectPropertyAddress& address);

// The property calls. Main thread only. On a desktop without an audio service no object has a
// property and every call returns kAudioHardwareNotRunningError. The qualifier is never used: pass
// size 0 and a null pointer.
[[nodiscard]] bool AudioObjectHasProperty(AudioObjectID object,
                                          const AudioObjectPropertyAddress& address);
[[nodiscard]] OSStatus AudioObjectIsPropertySettable(AudioObjectID object,
                                                     const AudioObjectPropertyAddress& address,
                                                     bool& outIsSettable);
/// `ioDataSize` goes in as the room at `outData` in bytes and comes back as the bytes written.
[[nodiscard]] OSStatus AudioObjectGetPropertyData(AudioObjectID object,
                                                  const AudioObjectPropertyAddress& address,
                                                  std::uint32_t qualifierSize,
                                                  const void* qualifier, std::uint32_t& ioDataSize,
                                                  void* outData);
[[nodiscard]] OSStatus AudioObjectSetPropertyData(AudioObjectID object,
                                                  const AudioObjectPropertyAddress& address,
                                                  std::uint32_t qualifierSize,
                                                  const void* qualifier, std::uint32_t dataSize,
                                                  const void* data);

}  // namespace platform
