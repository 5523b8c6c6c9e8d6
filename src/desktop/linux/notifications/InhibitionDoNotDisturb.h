#pragma once

#include "desktop/linux/notifications/PropertyDoNotDisturb.h"

namespace linux_desktop {

/// Plasma, and whatever else offers inhibitions: each program that wants quiet holds one of its
/// own, and it is quiet while there is any. On is whether we hold ours, so that it stays quiet when
/// the others' end; nobody else's can be ended. Ours ends with our connection to the bus, and when
/// the user ends all.
class InhibitionDoNotDisturb final : public PropertyDoNotDisturb {
  Q_OBJECT

 public:
  InhibitionDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon);
  [[nodiscard]] std::optional<bool> isOn() override;
  [[nodiscard]] bool set(bool on) override;

 protected:
  [[nodiscard]] std::optional<bool> stateOf(const QVariantMap& properties) const override;

 private:
  void inhibit();
  void release();

  bool wanted_ = false;
  bool inhibiting_ = false;  // asked for, the ticket is not here yet
  std::optional<uint> ticket_;
};

}  // namespace linux_desktop
