#include "desktop/linux/notifications/DunstDoNotDisturb.h"

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

}  // namespace

DunstDoNotDisturb::DunstDoNotDisturb(QDBusConnection connection,
                                     const NotificationDaemonIdentity& daemon)
    : PropertyDoNotDisturb(std::move(connection), daemon, kControl) {
  readFirst();
}

std::optional<bool> DunstDoNotDisturb::stateOf(const QVariantMap& properties) const {
  if (properties.contains(kPauseLevel)) return properties.value(kPauseLevel).toUInt() > 0;
  if (properties.contains(kPaused)) return properties.value(kPaused).toBool();
  return std::nullopt;
}

/// From 1.12 on, `paused` stands for the levels 100 and 0, so that it serves every version.
bool DunstDoNotDisturb::set(bool on) {
  write(busCall(owner(), kPath, kProperties, "Set",
                {kControl, kPaused, QVariant::fromValue(QDBusVariant(on))}),
        on);
  return true;
}

}  // namespace linux_desktop
