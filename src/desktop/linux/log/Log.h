#pragma once

#include <QLoggingCategory>

namespace linux_desktop {

// What the Linux desktop has to say, on standard error: one category a room. Warnings are shown;
// the rest is quiet until QT_LOGGING_RULES asks for it.

/// "calmdeck.audio": sound; what changes in ordinary life is on the level info.
Q_DECLARE_LOGGING_CATEGORY(lcAudio)
/// "calmdeck.bus": the buses, what we offer on them, and services that more than one room asks.
Q_DECLARE_LOGGING_CATEGORY(lcBus)
/// "calmdeck.gnome": what our extension of GNOME Shell does for us.
Q_DECLARE_LOGGING_CATEGORY(lcGnome)
/// "calmdeck.gsettings": settings of the desktop's own.
Q_DECLARE_LOGGING_CATEGORY(lcGSettings)
/// "calmdeck.keys": hot keys and the keyboard.
Q_DECLARE_LOGGING_CATEGORY(lcKeys)
/// "calmdeck.kwin": windows of other programs, at KWin.
Q_DECLARE_LOGGING_CATEGORY(lcKWin)
/// "calmdeck.login": what starts at login.
Q_DECLARE_LOGGING_CATEGORY(lcLogin)
/// "calmdeck.notifications": Do Not Disturb and notifications.
Q_DECLARE_LOGGING_CATEGORY(lcNotifications)
/// "calmdeck.process": one program a login, files.
Q_DECLARE_LOGGING_CATEGORY(lcProcess)
/// "calmdeck.session": which services this session offers.
Q_DECLARE_LOGGING_CATEGORY(lcSession)
/// "calmdeck.sway": the connection to sway, windows of other programs there.
Q_DECLARE_LOGGING_CATEGORY(lcSway)
/// "calmdeck.tray": the icon and its menu.
Q_DECLARE_LOGGING_CATEGORY(lcTray)
/// "calmdeck.ui": our own windows.
Q_DECLARE_LOGGING_CATEGORY(lcUi)
/// "calmdeck.updates": newer versions.
Q_DECLARE_LOGGING_CATEGORY(lcUpdates)
/// "calmdeck.wallpaper": the desktop's picture.
Q_DECLARE_LOGGING_CATEGORY(lcWallpaper)
/// "calmdeck.wayland": our own connection to the compositor, and what is done over it.
Q_DECLARE_LOGGING_CATEGORY(lcWayland)
/// "calmdeck.x11": screens, covers, windows of other programs.
Q_DECLARE_LOGGING_CATEGORY(lcX11)

}  // namespace linux_desktop
