#pragma once

#include <cstdint>
#include <optional>
#include <variant>

namespace linux_desktop {

/// Levels are percents of the full volume, that of the loudest channel; more than all of it is 100.
struct VolumeSettings {
  int inputLevel = 0;                // 0 as well while the device is muted
  std::optional<int> outputLevel{};  // none without an output device, as is the next
  std::optional<bool> outputMuted{};
};

enum class VolumeTrouble : std::uint8_t {
  NoServer,      // or one that does not answer
  NoMicrophone,  // also where the default is to record what is played
  Refused        // by the server; one line on standard error says why
};

/// The volumes of the default devices. Main thread only; a call waits half a second at most.
class VolumeControl {
 public:
  virtual ~VolumeControl() = default;

  [[nodiscard]] virtual std::variant<VolumeSettings, VolumeTrouble> settings() = 0;
  /// Makes the microphone read as `level`, from 0 to 100. 0 only mutes the device. Any other level
  /// ends that and leaves the channels alone if they read as that level already, so that their
  /// balance and a volume beyond 100 percent outlast a mute; else it scales them.
  [[nodiscard]] virtual std::optional<VolumeTrouble> setInputLevel(int level) = 0;
};

}  // namespace linux_desktop
