#include "desktop/linux/audio/PulseSound.h"

#include <algorithm>

namespace linux_desktop {
namespace {

// Rounded both ways, so that each level is read as it was set.
int levelOf(const pa_cvolume& volume) {
  const std::uint64_t loudest = pa_cvolume_max(&volume);
  const std::uint64_t percent = (loudest * 100 + PA_VOLUME_NORM / 2) / PA_VOLUME_NORM;
  return static_cast<int>(std::min<std::uint64_t>(percent, 100));
}

pa_volume_t volumeFor(int level) {
  return (static_cast<pa_volume_t>(level) * PA_VOLUME_NORM + 50) / 100;
}

std::optional<VolumeTrouble> troubleIn(PulseServer::Answer answer) {
  switch (answer) {
    case PulseServer::Answer::Done:
      return std::nullopt;
    case PulseServer::Answer::NotRunning:
      return VolumeTrouble::NoServer;
    case PulseServer::Answer::NoSuchDevice:
      return VolumeTrouble::NoMicrophone;
    case PulseServer::Answer::Refused:
      break;
  }
  return VolumeTrouble::Refused;
}

class PulseVolumeControl final : public VolumeControl {
 public:
  explicit PulseVolumeControl(PulseServer& server) : server_(server) {}

  [[nodiscard]] std::variant<int, VolumeTrouble> inputLevel() override {
    if (!server_.reachable(server_.deadlineFromNow())) return VolumeTrouble::NoServer;
    const std::optional<Device> source = server_.defaultDevice(DeviceKind::Source);
    if (!source) return VolumeTrouble::NoMicrophone;
    return source->muted ? 0 : levelOf(source->volume);
  }

  [[nodiscard]] std::optional<VolumeTrouble> setInputLevel(int level) override {
    const PulseServer::Deadline deadline = server_.deadlineFromNow();
    if (!server_.reachable(deadline)) return VolumeTrouble::NoServer;
    const std::optional<Device> source = server_.defaultDevice(DeviceKind::Source);
    if (!source) return VolumeTrouble::NoMicrophone;
    // The volume goes first: nothing is to be heard that is louder than what was asked for.
    if (level != 0 && levelOf(source->volume) != level) {
      pa_cvolume scaled = source->volume;
      pa_cvolume_scale(&scaled, volumeFor(level));
      const auto trouble = troubleIn(server_.setSourceVolume(source->id, scaled, deadline));
      if (trouble) return trouble;
    }
    return troubleIn(server_.setMuted(DeviceKind::Source, source->id, level == 0, deadline));
  }

 private:
  PulseServer& server_;
};

}  // namespace

std::unique_ptr<VolumeControl> pulseVolumeControl(PulseServer& server) {
  return std::make_unique<PulseVolumeControl>(server);
}

}  // namespace linux_desktop
