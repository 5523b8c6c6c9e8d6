#pragma once

#include <cstdint>
#include <optional>
#include <variant>

namespace linux_desktop {

enum class VolumeTrouble : std::uint8_t {
  NoServer,      // or one that does not answer
  NoMicrophone,  // also where the default is to record what is played
  Refused        // by the server; one line on standard error says why
};

/// The volume of the default microphone. Main thread only; a call waits half a second at most.
///
/// Levels are percents of the full volume, that of the loudest channel; more than all of it is 100.
class VolumeControl {
 public:
  virtual ~VolumeControl() = default;

  /// 0 as well while the device is muted.
  [[nodiscard]] virtual std::variant<int, VolumeTrouble> inputLevel() = 0;
  /// Makes the microphone read as `level`, from 0 to 100. 0 only mutes the device. Any other level
  /// ends that and leaves the channels alone if they read as that level already, so that their
  /// balance and a volume beyond 100 percent outlast a mute; else it scales them.
  [[nodiscard]] virtual std::optional<VolumeTrouble> setInputLevel(int level) = 0;
};

}  // namespace linux_desktop
