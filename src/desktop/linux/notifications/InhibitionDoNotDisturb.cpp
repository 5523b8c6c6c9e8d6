#include "desktop/linux/notifications/InhibitionDoNotDisturb.h"

#include <QDBusVariant>
#include <QVariantMap>
#include <utility>

#include "desktop/linux/notifications/BusQuestion.h"
#include "desktop/linux/notifications/NotificationsLog.h"

namespace linux_desktop {
namespace {

const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
const QString kNotifications = QStringLiteral("org.freedesktop.Notifications");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");
const QString kInhibited = QStringLiteral("Inhibited");
const QString kDesktopEntry = QStringLiteral("org.calmdeck.Calmdeck");
const QString kReason = QStringLiteral("Presentation mode");

}  // namespace

InhibitionDoNotDisturb::InhibitionDoNotDisturb(QDBusConnection connection,
                                               const NotificationDaemonIdentity& daemon)
    : BusAdapter(std::move(connection), daemon), owner_(daemon.owner), name_(daemon.name) {
  QDBusConnection signals_ = bus();
  signals_.connect(owner_, kPath, kProperties, "PropertiesChanged", this,
                   SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
  readFirst();
}

QDBusMessage InhibitionDoNotDisturb::stateQuestion() const {
  return busCall(owner_, kPath, kProperties, "Get", {kNotifications, kInhibited});
}

std::optional<bool> InhibitionDoNotDisturb::stateIn(const QDBusMessage& answer) const {
  if (isError(answer)) return std::nullopt;
  return answer.arguments().value(0).value<QDBusVariant>().variant().toBool();
}

bool InhibitionDoNotDisturb::set(bool on) {
  if (!on && !ticket_ && !inhibiting_) {
    if (!isOn().value_or(false)) return true;
    qCWarning(lcNotifications, "Do Not Disturb was switched on by somebody else; %s keeps it on",
              qPrintable(name_));
    return false;
  }
  wanted_ = on;
  assume(on);
  if (!inhibiting_ && on != ticket_.has_value()) on ? inhibit() : release();
  return true;
}

void InhibitionDoNotDisturb::inhibit() {
  inhibiting_ = true;
  write(busCall(owner_, kPath, kNotifications, "Inhibit", {kDesktopEntry, kReason, QVariantMap()}),
        true, [this](const QDBusMessage& answer) {
          inhibiting_ = false;
          if (isError(answer)) return;
          ticket_ = answer.arguments().value(0).toUInt();
          if (!wanted_) release();
        });
}

void InhibitionDoNotDisturb::release() {
  write(busCall(owner_, kPath, kNotifications, "UnInhibit", {*std::exchange(ticket_, {})}), false,
        [this](const QDBusMessage&) { read(); });  // somebody else may want quiet, too
}

void InhibitionDoNotDisturb::propertiesChanged(const QString& interface, const QVariantMap& changed,
                                               const QStringList& invalidated) {
  if (interface != kNotifications) return;
  if (changed.contains(kInhibited)) {
    heard(changed.value(kInhibited).toBool());
  } else if (invalidated.contains(kInhibited)) {
    read();
  }
}

}  // namespace linux_desktop
