#include "desktop/linux/notifications/PropertyDoNotDisturb.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QVariantMap>
#include <utility>

#include "desktop/linux/notifications/BusAdapter.h"

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

namespace {

const QString kControl = QStringLiteral("org.dunstproject.cmd0");
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

namespace {

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
