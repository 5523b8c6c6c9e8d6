#pragma once

#include <QString>

#include "desktop/linux/notifications/PropertyDoNotDisturb.h"

namespace linux_desktop {

/// Plasma, and whatever else offers inhibitions: each program that wants quiet holds one of its
/// own, and it is quiet while there is any. Ours ends with our connection to the bus, and nobody
/// else's can be ended.
class InhibitionDoNotDisturb final : public PropertyDoNotDisturb {
  Q_OBJECT

 public:
  InhibitionDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon);
  [[nodiscard]] bool set(bool on) override;

 protected:
  [[nodiscard]] std::optional<bool> stateOf(const QVariantMap& properties) const override;

 private:
  void inhibit();
  void release();

  QString name_;
  bool wanted_ = false;
  bool inhibiting_ = false;  // asked for, the ticket is not here yet
  std::optional<uint> ticket_;
};

}  // namespace linux_desktop
