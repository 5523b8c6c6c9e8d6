#pragma once

#include <QLoggingCategory>

namespace linux_desktop {

/// What the tray has to say. Warnings are shown; the rest on request (calmdeck.tray.debug=true).
Q_DECLARE_LOGGING_CATEGORY(trayLog)

}  // namespace linux_desktop
