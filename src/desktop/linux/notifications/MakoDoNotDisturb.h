#pragma once

#include <QDBusConnection>
#include <QStringList>
#include <optional>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/notifications/DoNotDisturbAdapter.h"
#include "desktop/linux/notifications/NotificationDaemon.h"

namespace linux_desktop {

/// mako: one mode beside the user's own ones, which stay as they are. What a mode does is written
/// in mako's configuration alone, and mako takes any name; so quiet is refused where no section
/// there makes notifications invisible in that mode. mako tells nobody of a change, and forgets its
/// modes when it ends.
class MakoDoNotDisturb final : public DoNotDisturbAdapter {
 public:
  MakoDoNotDisturb(const QDBusConnection& bus, const NotificationDaemonIdentity& daemon);

  [[nodiscard]] std::optional<bool> isOn() override;
  [[nodiscard]] bool set(bool on) override;

 private:
  [[nodiscard]] std::optional<QStringList> modes(const QDeadlineTimer& deadline);

  BusPeer mako_;
};

}  // namespace linux_desktop
