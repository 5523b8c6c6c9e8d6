#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include "desktop/linux/notifications/BusAdapter.h"

namespace linux_desktop {

/// A daemon whose state is to be read from properties that it says the changes of.
class PropertyDoNotDisturb : public BusAdapter {
  Q_OBJECT

 protected:
  /// `interface` is the one that has the properties.
  PropertyDoNotDisturb(QDBusConnection bus, const NotificationDaemonIdentity& daemon,
                       QString interface);

  [[nodiscard]] const QString& owner() const { return owner_; }

  /// None when the properties, which may be some of all, do not tell.
  [[nodiscard]] virtual std::optional<bool> stateOf(const QVariantMap& properties) const = 0;

  [[nodiscard]] QDBusMessage stateQuestion() const override;
  [[nodiscard]] std::optional<bool> stateIn(const QDBusMessage& answer) const override;

 private:
  Q_SLOT void propertiesChanged(const QString& interface, const QVariantMap& changed,
                                const QStringList& invalidated);

  QString owner_;
  QString interface_;
};

}  // namespace linux_desktop
