#pragma once

#include <QDBusConnection>
#include <QString>
#include <QStringList>
#include <memory>
#include <variant>

#include "desktop/linux/notifications/DoNotDisturbAdapter.h"
#include "desktop/linux/notifications/NotificationDaemon.h"

namespace linux_desktop {

/// What switches this daemon, or why nothing does, as a sentence without a full stop. A new kind of
/// daemon is a file and a row in the table behind this.
[[nodiscard]] std::variant<std::unique_ptr<DoNotDisturbAdapter>, QString> adapterFor(
    const NotificationDaemonIdentity& daemon, const QDBusConnection& bus);

/// What switches the daemon that these desktops, as XDG_CURRENT_DESKTOP lists them, would start;
/// null where that can only be known once it runs.
[[nodiscard]] std::unique_ptr<DoNotDisturbAdapter> adapterForDaemonOf(
    const QStringList& desktops, const NotificationDaemonIdentity& nobody,
    const QDBusConnection& bus);

}  // namespace linux_desktop
