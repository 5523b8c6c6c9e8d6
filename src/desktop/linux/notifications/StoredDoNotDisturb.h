#pragma once

#include <memory>

#include "desktop/linux/notifications/DoNotDisturbAdapter.h"

namespace linux_desktop {

// Switches that are stored in a desktop's settings, where they outlast its daemon and us.

/// MATE's notification daemon: a key in GSettings; null where that cannot be had. The daemon ends
/// when it has had nothing to show for half a minute, and is started by the next notification.
/// Destroying this waits, half a second at most, for a change that may still be on its way.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> mateDoNotDisturb();

/// lxqt-notificationd: an entry of its settings file, which it watches and follows within a second
/// or two.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> lxqtDoNotDisturb();

}  // namespace linux_desktop
