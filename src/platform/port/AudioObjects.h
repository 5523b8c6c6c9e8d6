#pragma once

#include <cstdint>

#include "platform/coreaudio/AudioObject.h"

namespace platform::port {

/// The audio objects of the machine: the system object (id 1) and the devices it names.
/// Main thread only. Reads are answered from memory; a write returns within half a second, and
/// nothing takes effect later than its caller was told.
///
/// Every desktop answers at least these two addresses:
///   system object, 'dOut' 'glob' 0: the id of the default output device, readable; it is absent
///     (hasProperty is false) while there is no device or no sound server;
///   that device,   'mute' 'outp' 0: 1 when muted, else 0; readable and writable.
/// A device keeps its id for as long as it exists; ids are not reused within the process.
class AudioObjects {
 public:
  virtual ~AudioObjects() = default;

  [[nodiscard]] virtual bool hasProperty(AudioObjectID object,
                                         const AudioObjectPropertyAddress& address) const = 0;
  /// `settable` is written only on success.
  [[nodiscard]] virtual OSStatus isPropertySettable(AudioObjectID object,
                                                    const AudioObjectPropertyAddress& address,
                                                    bool& settable) const = 0;
  /// `value` is written only on success.
  [[nodiscard]] virtual OSStatus propertyData(AudioObjectID object,
                                              const AudioObjectPropertyAddress& address,
                                              std::uint32_t& value) const = 0;
  [[nodiscard]] virtual OSStatus setPropertyData(AudioObjectID object,
                                                 const AudioObjectPropertyAddress& address,
                                                 std::uint32_t value) = 0;
};

}  // namespace platform::port
