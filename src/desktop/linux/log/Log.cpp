#include "desktop/linux/log/Log.h"

namespace linux_desktop {

Q_LOGGING_CATEGORY(lcAudio, "calmdeck.audio", QtWarningMsg)
Q_LOGGING_CATEGORY(lcBus, "calmdeck.bus", QtWarningMsg)
Q_LOGGING_CATEGORY(lcGnome, "calmdeck.gnome", QtWarningMsg)
Q_LOGGING_CATEGORY(lcGSettings, "calmdeck.gsettings", QtWarningMsg)
Q_LOGGING_CATEGORY(lcKeys, "calmdeck.keys", QtWarningMsg)
Q_LOGGING_CATEGORY(lcKWin, "calmdeck.kwin", QtWarningMsg)
Q_LOGGING_CATEGORY(lcLogin, "calmdeck.login", QtWarningMsg)
Q_LOGGING_CATEGORY(lcNotifications, "calmdeck.notifications", QtWarningMsg)
Q_LOGGING_CATEGORY(lcProcess, "calmdeck.process", QtWarningMsg)
Q_LOGGING_CATEGORY(lcSession, "calmdeck.session", QtWarningMsg)
Q_LOGGING_CATEGORY(lcSway, "calmdeck.sway", QtWarningMsg)
Q_LOGGING_CATEGORY(lcTray, "calmdeck.tray", QtWarningMsg)
Q_LOGGING_CATEGORY(lcUi, "calmdeck.ui", QtWarningMsg)
Q_LOGGING_CATEGORY(lcUpdates, "calmdeck.updates", QtWarningMsg)
Q_LOGGING_CATEGORY(lcWallpaper, "calmdeck.wallpaper", QtWarningMsg)
Q_LOGGING_CATEGORY(lcWayland, "calmdeck.wayland", QtWarningMsg)
Q_LOGGING_CATEGORY(lcX11, "calmdeck.x11", QtWarningMsg)

}  // namespace linux_desktop
