#include "desktop/harness/DoNotDisturbState.h"

namespace harness {

namespace {

std::vector<std::string> reader(const XDesk& desk, NotificationDaemon kind) {
  switch (kind) {
    case NotificationDaemon::XfceNotifyd:
      return {"xfconf-query", "-c", "xfce4-notifyd", "-p", "/do-not-disturb"};
    case NotificationDaemon::Dunst:
      return {"dunstctl", "is-paused"};
    case NotificationDaemon::Mate:
      return {"gsettings", "get", "org.mate.NotificationDaemon", "do-not-disturb"};
    default:
      return {"sed", "-n", "s/^doNotDisturb=//p", desk.home().config() / "lxqt/notifications.conf"};
  }
}

}  // namespace

std::optional<bool> doNotDisturb(const XDesk& desk, NotificationDaemon kind) {
  const std::string answer = desk.run(reader(desk, kind)).output;
  if (answer == "true\n") return true;
  if (answer == "false\n") return false;
  return std::nullopt;
}

}  // namespace harness
