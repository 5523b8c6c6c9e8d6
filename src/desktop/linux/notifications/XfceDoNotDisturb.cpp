#include "desktop/linux/notifications/XfceDoNotDisturb.h"

#include <QDBusVariant>
#include <QString>
#include <QVariant>
#include <QVariantList>
#include <utility>

#include "desktop/linux/notifications/BusAdapter.h"

namespace linux_desktop {
namespace {

const QString kXfconf = QStringLiteral("org.xfce.Xfconf");
const QString kXfconfPath = QStringLiteral("/org/xfce/Xfconf");
const QString kChannel = QStringLiteral("xfce4-notifyd");
const QString kProperty = QStringLiteral("/do-not-disturb");

bool isOurs(const QDBusMessage& signal) {
  const QVariantList arguments = signal.arguments();
  return arguments.value(0) == kChannel && arguments.value(1) == kProperty;
}

bool flagIn(const QVariant& value) {
  return value.value<QDBusVariant>().variant().toBool();
}

}  // namespace

XfceDoNotDisturb::XfceDoNotDisturb(QDBusConnection connection,
                                   const NotificationDaemonIdentity& daemon)
    : BusAdapter(std::move(connection), daemon) {
  // By its place, not by the service's name: Qt would ask for the name's owner, and wait for it.
  QDBusConnection signals_ = bus();
  signals_.connect({}, kXfconfPath, kXfconf, "PropertyChanged", this,
                   SLOT(propertyChanged(QDBusMessage)));
  signals_.connect({}, kXfconfPath, kXfconf, "PropertyRemoved", this,
                   SLOT(propertyRemoved(QDBusMessage)));
  readFirst();
}

QDBusMessage XfceDoNotDisturb::stateQuestion() const {
  return busCall(kXfconf, kXfconfPath, kXfconf, "GetProperty", {kChannel, kProperty});
}

std::optional<bool> XfceDoNotDisturb::stateIn(const QDBusMessage& answer) const {
  if (answer.errorName() == "org.xfce.Xfconf.Error.PropertyNotFound") return false;
  if (isError(answer)) return std::nullopt;
  return flagIn(answer.arguments().value(0));
}

bool XfceDoNotDisturb::set(bool on) {
  write(busCall(kXfconf, kXfconfPath, kXfconf, "SetProperty",
                {kChannel, kProperty, QVariant::fromValue(QDBusVariant(on))}),
        on);
  return true;
}

void XfceDoNotDisturb::propertyChanged(const QDBusMessage& signal) {
  if (isOurs(signal)) heard(flagIn(signal.arguments().value(2)));
}

void XfceDoNotDisturb::propertyRemoved(const QDBusMessage& signal) {
  if (isOurs(signal)) heard(false);
}

}  // namespace linux_desktop
