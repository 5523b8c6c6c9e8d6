#pragma once

#include <QWindow>

#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

// What Qt does not tell window managers about our windows. They speak over Qt's own connection, so
// that they arrive in the order in which Qt maps and unmaps.

/// Keeps a window that is not mapped yet out of task lists and pagers.
void keepOutOfTaskLists(QWindow& window, XServer& server);

/// Says of a window that was just shown that the user asked for it at the server's time now.
void markAsAskedFor(QWindow& window, XServer& server);

/// Asks for the keyboard on behalf of the user. The window manager may refuse. The window must be
/// on the screen.
void activate(QWindow& window, XServer& server);

}  // namespace linux_desktop
