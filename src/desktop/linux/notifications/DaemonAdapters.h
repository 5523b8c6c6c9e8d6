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

// Daemons that tell nobody of a change, and so are asked each time.

/// mako: one mode beside the user's own ones, which stay as they are. What a mode does is written
/// in mako's configuration alone, and mako takes any name; so quiet is refused where no section
/// there makes notifications invisible in that mode. It forgets its modes when it ends.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> makoDoNotDisturb(
    const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);

/// awesome's own daemon, a library of the window manager. It has no interface of its own on the
/// bus; awesome runs lines of Lua that arrive there, unless the user's configuration does without.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> naughtyDoNotDisturb(
    const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);

// Switches that are stored in a desktop's settings, where they outlast its daemon and us.

/// A flag in GSettings.
struct SettingsSwitch {
  const char* schema;
  const char* key;
  /// What the flag is in Do Not Disturb.
  bool quiet;
};

/// The daemon ends when it has had nothing to show for half a minute, and is started by the next
/// notification.
inline constexpr SettingsSwitch kMateSwitch{"org.mate.NotificationDaemon", "do-not-disturb", true};
inline constexpr SettingsSwitch kCinnamonSwitch{"org.cinnamon.desktop.notifications",
                                                "display-notifications", false};
inline constexpr SettingsSwitch kGnomeSwitch{"org.gnome.desktop.notifications", "show-banners",
                                             false};

/// Null where that cannot be had. Destroying this waits, half a second at most, for a change that
/// may still be on its way.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> settingsDoNotDisturb(const SettingsSwitch& row);
template <const SettingsSwitch& row>
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> settingsDoNotDisturb() {
  return settingsDoNotDisturb(row);
}

/// lxqt-notificationd: an entry of its settings file, which it watches and follows within a second
/// or two.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> lxqtDoNotDisturb();

}  // namespace linux_desktop
