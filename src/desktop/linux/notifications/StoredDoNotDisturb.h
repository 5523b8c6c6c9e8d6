#pragma once

#include <memory>

#include "desktop/linux/notifications/DoNotDisturbAdapter.h"

namespace linux_desktop {

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
