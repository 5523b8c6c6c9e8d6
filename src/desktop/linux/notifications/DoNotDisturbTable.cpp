#include "desktop/linux/notifications/DoNotDisturbTable.h"

#include <algorithm>
#include <iterator>

#include "desktop/linux/notifications/LxqtDoNotDisturb.h"
#include "desktop/linux/notifications/MateDoNotDisturb.h"
#include "desktop/linux/notifications/PropertyDoNotDisturb.h"
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
  /// The desktop whose daemon it is, where the switch outlives the daemon.
  const char* desktop;
  /// Null where what the adapter needs is not there.
  AdapterPtr (*make)(const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);
};

// In order of preference.
constexpr AdapterRow kAdapters[] = {
    {"Xfce Notify Daemon", "Xfce", nullptr, "XFCE", &onBus<XfceDoNotDisturb>},
    {"dunst", "knopwob", nullptr, nullptr, &onBus<DunstDoNotDisturb>},
    {"Notification Daemon", "MATE", nullptr, "MATE", &mate},
    {"lxqt-notificationd", "lxqt.org", nullptr, "LXQt", &lxqt},
    {"Plasma", "KDE", nullptr, nullptr, &onBus<InhibitionDoNotDisturb>},
    {nullptr, nullptr, "inhibitions", nullptr, &onBus<InhibitionDoNotDisturb>},
};

bool describes(const AdapterRow& row, const NotificationDaemonIdentity& daemon) {
  if (row.capability != nullptr) return daemon.capabilities.contains(row.capability);
  return daemon.name == row.name && daemon.vendor == row.vendor;
}

QString described(const NotificationDaemonIdentity& daemon) {
  return QString(R"("%1" by "%2")").arg(daemon.name, daemon.vendor);
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

AdapterPtr adapterForDaemonOf(const QStringList& desktops, const NotificationDaemonIdentity& nobody,
                              const QDBusConnection& bus) {
  const auto* row = std::ranges::find_if(kAdapters, [&](const AdapterRow& each) {
    return each.desktop != nullptr && desktops.contains(QLatin1String(each.desktop));
  });
  return row == std::end(kAdapters) ? nullptr : row->make(nobody, bus);
}

}  // namespace linux_desktop
