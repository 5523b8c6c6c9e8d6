#pragma once

#include <QDBusMessage>

#include "desktop/linux/notifications/BusAdapter.h"

namespace linux_desktop {

/// xfce4-notifyd: a property of the Xfce settings, which the daemon follows at once and which
/// outlasts both it and us.
class XfceDoNotDisturb final : public BusAdapter {
  Q_OBJECT

 public:
  XfceDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon);
  [[nodiscard]] bool set(bool on) override;
  [[nodiscard]] bool outlivesDaemon() const override { return true; }

 protected:
  [[nodiscard]] QDBusMessage stateQuestion() const override;
  [[nodiscard]] std::optional<bool> stateIn(const QDBusMessage& answer) const override;

 private:
  Q_SLOT void propertyChanged(const QDBusMessage& signal);
  Q_SLOT void propertyRemoved(const QDBusMessage& signal);
};

}  // namespace linux_desktop
