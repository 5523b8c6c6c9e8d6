#pragma once

#include <QDBusConnection>
#include <memory>

#include "desktop/linux/notifications/DoNotDisturbAdapter.h"
#include "desktop/linux/notifications/NotificationDaemon.h"

namespace linux_desktop {

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

}  // namespace linux_desktop
