#pragma once

#include "desktop/linux/audio/PulseServer.h"
#include "desktop/linux/audio/VolumeControl.h"

namespace linux_desktop {

/// The volumes of the sound server's default sink and source. Hung and absent servers are met as
/// PulseAudioObjects tells.
class PulseVolumeControl final : public VolumeControl {
 public:
  /// `server` must outlive this.
  explicit PulseVolumeControl(PulseServer& server) : server_(server) {}

  [[nodiscard]] std::variant<int, VolumeTrouble> inputLevel() override;
  [[nodiscard]] std::optional<VolumeTrouble> setInputLevel(int level) override;

 private:
  PulseServer& server_;
};

}  // namespace linux_desktop
