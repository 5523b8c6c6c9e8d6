#pragma once

#include <QDBusConnection>
#include <memory>

#include "desktop/linux/notifications/DoNotDisturbAdapter.h"
#include "desktop/linux/notifications/NotificationDaemon.h"

namespace linux_desktop {

// Daemons that speak over the bus, and tell of changes.

/// xfce4-notifyd: a property of the Xfce settings, which the daemon follows at once and which
/// outlasts both it and us.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> xfceDoNotDisturb(
    const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);
/// dunst, which forgets its state when it ends.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> dunstDoNotDisturb(
    const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);
/// swaync, which keeps its state across restarts. Its inhibitors are not used: older versions have
/// none, and one would outlast us where nothing shows it.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> swayncDoNotDisturb(
    const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);
/// Budgie's, which only takes to be turned round; so it is asked for its state before the first
/// time, and known by its own word after that.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> budgieDoNotDisturb(
    const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);
/// Plasma, and whatever else offers inhibitions: each program that wants quiet holds one of its
/// own, and it is quiet while there is any. On is whether we hold ours, so that it stays quiet when
/// the others' end; nobody else's can be ended. Ours ends with our connection to the bus, and when
/// the user ends all.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> inhibitionDoNotDisturb(
    const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);

}  // namespace linux_desktop
