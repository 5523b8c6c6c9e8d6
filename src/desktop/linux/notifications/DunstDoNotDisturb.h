#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include "desktop/linux/notifications/BusAdapter.h"

namespace linux_desktop {

/// dunst: "paused", or from 1.12 on the pause level from 0 to 100, of which any but 0 is on. dunst
/// forgets it when it ends.
class DunstDoNotDisturb final : public BusAdapter {
  Q_OBJECT

 public:
  DunstDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon);
  [[nodiscard]] bool set(bool on) override;

 protected:
  [[nodiscard]] QDBusMessage stateQuestion() const override;
  [[nodiscard]] std::optional<bool> stateIn(const QDBusMessage& answer) const override;

 private:
  Q_SLOT void propertiesChanged(const QString& interface, const QVariantMap& changed,
                                const QStringList& invalidated);

  QString owner_;
};

}  // namespace linux_desktop
