#include "desktop/linux/notifications/InhibitionDoNotDisturb.h"

#include <QVariantMap>
#include <utility>

#include "desktop/linux/notifications/BusQuestion.h"

namespace linux_desktop {
namespace {

const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
const QString kNotifications = QStringLiteral("org.freedesktop.Notifications");
const QString kInhibited = QStringLiteral("Inhibited");
const QString kDesktopEntry = QStringLiteral("org.calmdeck.Calmdeck");
const QString kReason = QStringLiteral("Presentation mode");

}  // namespace

InhibitionDoNotDisturb::InhibitionDoNotDisturb(QDBusConnection connection,
                                               const NotificationDaemonIdentity& daemon)
    : PropertyDoNotDisturb(std::move(connection), daemon, kNotifications) {}

std::optional<bool> InhibitionDoNotDisturb::isOn() {
  return wanted_ && PropertyDoNotDisturb::isOn().value_or(true);
}

std::optional<bool> InhibitionDoNotDisturb::stateOf(const QVariantMap& properties) const {
  if (!properties.contains(kInhibited)) return std::nullopt;
  return properties.value(kInhibited).toBool();
}

bool InhibitionDoNotDisturb::set(bool on) {
  // It is not quiet: whoever ended that has ended ours, too.
  if (!inhibiting_ && !PropertyDoNotDisturb::isOn().value_or(true)) ticket_.reset();
  wanted_ = on;
  assume(on);
  if (!inhibiting_ && on != ticket_.has_value()) on ? inhibit() : release();
  return true;
}

void InhibitionDoNotDisturb::inhibit() {
  inhibiting_ = true;
  write(busCall(owner(), kPath, kNotifications, "Inhibit", {kDesktopEntry, kReason, QVariantMap()}),
        true, [this](const QDBusMessage& answer) {
          inhibiting_ = false;
          if (isError(answer)) {
            wanted_ = false;
            return;
          }
          ticket_ = answer.arguments().value(0).toUInt();
          if (!wanted_) release();
        });
}

void InhibitionDoNotDisturb::release() {
  write(busCall(owner(), kPath, kNotifications, "UnInhibit", {*std::exchange(ticket_, {})}), false);
}

}  // namespace linux_desktop
