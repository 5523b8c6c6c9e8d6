#include "desktop/linux/notifications/DunstDoNotDisturb.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <utility>

#include "desktop/linux/notifications/BusQuestion.h"

namespace linux_desktop {
namespace {

const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
const QString kControl = QStringLiteral("org.dunstproject.cmd0");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");
const QString kPaused = QStringLiteral("paused");
const QString kPauseLevel = QStringLiteral("pauseLevel");

std::optional<bool> stateOf(const QVariantMap& properties) {
  if (properties.contains(kPauseLevel)) return properties.value(kPauseLevel).toUInt() > 0;
  if (properties.contains(kPaused)) return properties.value(kPaused).toBool();
  return std::nullopt;
}

}  // namespace

DunstDoNotDisturb::DunstDoNotDisturb(QDBusConnection connection,
                                     const NotificationDaemonIdentity& daemon)
    : BusAdapter(std::move(connection), daemon), owner_(daemon.owner) {
  QDBusConnection signals_ = bus();
  signals_.connect(owner_, kPath, kProperties, "PropertiesChanged", this,
                   SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
  readFirst();
}

QDBusMessage DunstDoNotDisturb::stateQuestion() const {
  return busCall(owner_, kPath, kProperties, "GetAll", {kControl});
}

std::optional<bool> DunstDoNotDisturb::stateIn(const QDBusMessage& answer) const {
  if (isError(answer)) return std::nullopt;
  return stateOf(qdbus_cast<QVariantMap>(answer.arguments().value(0)));
}

/// From 1.12 on, `paused` stands for the levels 100 and 0, so that it serves every version.
bool DunstDoNotDisturb::set(bool on) {
  write(busCall(owner_, kPath, kProperties, "Set",
                {kControl, kPaused, QVariant::fromValue(QDBusVariant(on))}),
        on);
  return true;
}

void DunstDoNotDisturb::propertiesChanged(const QString& interface, const QVariantMap& changed,
                                          const QStringList& invalidated) {
  if (interface != kControl) return;
  const std::optional<bool> on = stateOf(changed);
  if (on) {
    heard(*on);
  } else if (invalidated.contains(kPaused) || invalidated.contains(kPauseLevel)) {
    read();
  }
}

}  // namespace linux_desktop
