#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <optional>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/notifications/DoNotDisturbAdapter.h"
#include "desktop/linux/notifications/NotificationDaemon.h"

namespace linux_desktop {

/// awesome's own daemon, a library of the window manager. It tells of no change and has no
/// interface of its own on the bus; awesome runs lines of Lua that arrive there, unless the user's
/// configuration does without.
class NaughtyDoNotDisturb final : public DoNotDisturbAdapter {
 public:
  NaughtyDoNotDisturb(const QDBusConnection& bus, const NotificationDaemonIdentity& daemon);
  [[nodiscard]] std::optional<bool> isOn() override;
  [[nodiscard]] bool set(bool on) override;

 private:
  [[nodiscard]] QDBusMessage run(const char* lua);

  BusPeer awesome_;
};

}  // namespace linux_desktop
