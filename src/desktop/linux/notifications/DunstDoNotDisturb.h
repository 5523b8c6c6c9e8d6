#pragma once

#include "desktop/linux/notifications/PropertyDoNotDisturb.h"

namespace linux_desktop {

/// dunst: "paused", or from 1.12 on the pause level from 0 to 100, of which any but 0 is on. dunst
/// forgets it when it ends.
class DunstDoNotDisturb final : public PropertyDoNotDisturb {
  Q_OBJECT

 public:
  DunstDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon);
  [[nodiscard]] bool set(bool on) override;

 protected:
  [[nodiscard]] std::optional<bool> stateOf(const QVariantMap& properties) const override;
};

}  // namespace linux_desktop
