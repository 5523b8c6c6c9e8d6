#include "desktop/linux/notifications/DoNotDisturbTable.h"

#include "desktop/linux/notifications/DunstDoNotDisturb.h"
#include "desktop/linux/notifications/InhibitionDoNotDisturb.h"
#include "desktop/linux/notifications/LxqtDoNotDisturb.h"
#include "desktop/linux/notifications/MateDoNotDisturb.h"
#include "desktop/linux/notifications/XfceDoNotDisturb.h"

namespace linux_desktop {
namespace {

using AdapterPtr = std::unique_ptr<DoNotDisturbAdapter>;

template <typename Adapter>
AdapterPtr onBus(const NotificationDaemonIdentity& daemon, const QDBusConnection& bus) {
  return std::make_unique<Adapter>(bus, daemon);
}

AdapterPtr mate(const NotificationDaemonIdentity& /*daemon*/, const QDBusConnection& /*bus*/) {
  return MateDoNotDisturb::open();
}

AdapterPtr lxqt(const NotificationDaemonIdentity& /*daemon*/, const QDBusConnection& /*bus*/) {
  return std::make_unique<LxqtDoNotDisturb>();
}

/// A kind of daemon, by the pair that it gives for itself (either half is also given by others), or
/// by what it can do, whatever its name.
struct AdapterRow {
  const char* name;
  const char* vendor;
  const char* capability;
  /// Null where what the adapter needs is not there.
  AdapterPtr (*make)(const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);
};

// In order of preference.
constexpr AdapterRow kAdapters[] = {
    {"Xfce Notify Daemon", "Xfce", nullptr, &onBus<XfceDoNotDisturb>},
    {"dunst", "knopwob", nullptr, &onBus<DunstDoNotDisturb>},
    {"Notification Daemon", "MATE", nullptr, &mate},
    {"lxqt-notificationd", "lxqt.org", nullptr, &lxqt},
    {"Plasma", "KDE", nullptr, &onBus<InhibitionDoNotDisturb>},
    {nullptr, nullptr, "inhibitions", &onBus<InhibitionDoNotDisturb>},
};

bool describes(const AdapterRow& row, const NotificationDaemonIdentity& daemon) {
  if (row.capability != nullptr) return daemon.capabilities.contains(row.capability);
  return daemon.name == row.name && daemon.vendor == row.vendor;
}

QString described(const NotificationDaemonIdentity& daemon) {
  return QString("\"%1\" by \"%2\"").arg(daemon.name, daemon.vendor);
}

}  // namespace

std::variant<AdapterPtr, QString> adapterFor(const NotificationDaemonIdentity& daemon,
                                             const QDBusConnection& bus) {
  for (const AdapterRow& row : kAdapters) {
    if (!describes(row, daemon)) continue;
    AdapterPtr adapter = row.make(daemon, bus);
    if (adapter) return adapter;
    return "the settings of " + described(daemon) + " cannot be reached";
  }
  return described(daemon) + " shows notifications and has no Do Not Disturb that can be switched";
}

}  // namespace linux_desktop
