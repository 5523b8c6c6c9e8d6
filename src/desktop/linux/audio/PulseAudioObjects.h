#pragma once

#include "desktop/linux/audio/PulseServer.h"
#include "platform/port/AudioObjects.h"

namespace linux_desktop {

/// The audio objects over the native protocol of PulseAudio, which PipeWire speaks too. Every sink
/// is a device; the default output device is the server's default sink.
///
/// What a caller sees:
///   no server, or it was killed    hasProperty is false, every call kAudioHardwareNotRunningError;
///   the server hangs               reads answer from the copy; a write waits for half a second and
///                                  gives kAudioHardwareNotRunningError, the next give it at once,
///                                  until the server answers again (or half a minute has passed);
///   no output device               'dOut' is absent, kAudioHardwareUnknownPropertyError;
///   a device that was unplugged    kAudioHardwareBadObjectError, for ever;
///   refused by the server          kAudioHardwareUnspecifiedError.
/// All but an unplugged device also give one line on standard error an incident; that one, and
/// another default, are ordinary life and told on the level info. See PulseServer::setMuted
/// for how far a write can act late.
///
/// A call that comes before the first connection is made waits for it, within the same half
/// second. Main thread.
class PulseAudioObjects final : public platform::port::AudioObjects {
 public:
  /// `server` must outlive this.
  explicit PulseAudioObjects(PulseServer& server) : server_(server) {}

  [[nodiscard]] bool hasProperty(
      platform::AudioObjectID object,
      const platform::AudioObjectPropertyAddress& address) const override;
  [[nodiscard]] platform::OSStatus isPropertySettable(
      platform::AudioObjectID object, const platform::AudioObjectPropertyAddress& address,
      bool& settable) const override;
  [[nodiscard]] platform::OSStatus propertyData(platform::AudioObjectID object,
                                                const platform::AudioObjectPropertyAddress& address,
                                                std::uint32_t& value) const override;
  [[nodiscard]] platform::OSStatus setPropertyData(
      platform::AudioObjectID object, const platform::AudioObjectPropertyAddress& address,
      std::uint32_t value) override;

 private:
  struct Property {
    platform::OSStatus status = platform::noErr;  // the rest counts only then
    std::uint32_t value = 0;
    bool settable = false;
  };
  [[nodiscard]] Property look(platform::AudioObjectID object,
                              const platform::AudioObjectPropertyAddress& address,
                              PulseServer::Deadline deadline) const;
  [[nodiscard]] Property lookAtSystem(const platform::AudioObjectPropertyAddress& address) const;
  [[nodiscard]] Property lookAtDevice(platform::AudioObjectID device,
                                      const platform::AudioObjectPropertyAddress& address) const;

  PulseServer& server_;
};

}  // namespace linux_desktop
