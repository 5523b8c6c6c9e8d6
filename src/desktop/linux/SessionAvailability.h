#pragma once

#include "desktop/linux/SessionServices.h"
#include "desktop/linux/audio/PulseSound.h"
#include "desktop/linux/notifications/DaemonDoNotDisturb.h"
#include "platform/port/Program.h"

namespace linux_desktop {

/// What this session lacks: services that nobody serves, and programs that do not run or cannot do
/// it. Heard of when a notification daemon, a sound server, our extension of GNOME Shell, or a
/// known program that draws the desktop comes or goes.
class SessionAvailability final : public platform::port::Availability {
 public:
  /// All outlive this.
  SessionAvailability(SessionServices& session, DaemonDoNotDisturb& doNotDisturb,
                      PulseSound& sound);
  ~SessionAvailability() override;
  SessionAvailability(const SessionAvailability&) = delete;
  SessionAvailability& operator=(const SessionAvailability&) = delete;

  void setClient(platform::port::AvailabilityClient* client) override { client_ = client; }
  [[nodiscard]] std::optional<std::string> obstacle(platform::port::Capability capability) override;

 private:
  void changed();

  SessionServices& session_;
  DaemonDoNotDisturb& doNotDisturb_;
  PulseSound& sound_;
  platform::port::AvailabilityClient* client_ = nullptr;
  QObject context_;
};

}  // namespace linux_desktop
