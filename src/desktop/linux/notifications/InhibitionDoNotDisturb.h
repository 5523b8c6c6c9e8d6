#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include "desktop/linux/notifications/BusAdapter.h"

namespace linux_desktop {

/// Plasma, and whatever else offers inhibitions: each program that wants quiet holds one of its
/// own, and it is quiet while there is any. Ours ends with our connection to the bus, and nobody
/// else's can be ended.
class InhibitionDoNotDisturb final : public BusAdapter {
  Q_OBJECT

 public:
  InhibitionDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon);
  [[nodiscard]] bool set(bool on) override;

 protected:
  [[nodiscard]] QDBusMessage stateQuestion() const override;
  [[nodiscard]] std::optional<bool> stateIn(const QDBusMessage& answer) const override;

 private:
  Q_SLOT void propertiesChanged(const QString& interface, const QVariantMap& changed,
                                const QStringList& invalidated);
  void inhibit();
  void release();

  QString owner_;
  QString name_;
  bool wanted_ = false;
  bool inhibiting_ = false;  // asked for, the ticket is not here yet
  std::optional<uint> ticket_;
};

}  // namespace linux_desktop
