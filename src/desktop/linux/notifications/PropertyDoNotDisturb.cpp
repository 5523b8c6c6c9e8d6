#include "desktop/linux/notifications/PropertyDoNotDisturb.h"

#include <QDBusArgument>
#include <utility>

#include "desktop/linux/notifications/BusQuestion.h"

namespace linux_desktop {
namespace {

const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");

}  // namespace

PropertyDoNotDisturb::PropertyDoNotDisturb(QDBusConnection connection,
                                           const NotificationDaemonIdentity& daemon,
                                           QString interface)
    : BusAdapter(std::move(connection), daemon),
      owner_(daemon.owner),
      interface_(std::move(interface)) {
  QDBusConnection signals_ = bus();
  signals_.connect(owner_, kPath, kProperties, "PropertiesChanged", this,
                   SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
}

QDBusMessage PropertyDoNotDisturb::stateQuestion() const {
  return busCall(owner_, kPath, kProperties, "GetAll", {interface_});
}

std::optional<bool> PropertyDoNotDisturb::stateIn(const QDBusMessage& answer) const {
  if (isError(answer)) return std::nullopt;
  return stateOf(qdbus_cast<QVariantMap>(answer.arguments().value(0)));
}

void PropertyDoNotDisturb::propertiesChanged(const QString& interface, const QVariantMap& changed,
                                             const QStringList& invalidated) {
  if (interface != interface_) return;
  if (const std::optional<bool> on = stateOf(changed)) {
    heard(*on);
  } else if (!invalidated.isEmpty()) {
    read();
  }
}

}  // namespace linux_desktop
