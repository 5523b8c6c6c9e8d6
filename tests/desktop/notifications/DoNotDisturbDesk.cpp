#include "DoNotDisturbDesk.h"

#include <sstream>
#include <stdexcept>

#include "desktop/harness/DoNotDisturbState.h"

using harness::NotificationDaemon;

namespace {

constexpr const char* kProbe = "org.calmdeck.Probe";

// What sets the state when "true" or "false" is added.
std::vector<std::string> writer(NotificationDaemon kind) {
  switch (kind) {
    case NotificationDaemon::XfceNotifyd:
      return {"xfconf-query", "-c", "xfce4-notifyd", "-p", "/do-not-disturb",
              "-n",           "-t", "bool",          "-s"};
    case NotificationDaemon::Dunst:
      return {"dunstctl", "set-paused"};
    default:
      return {"gsettings", "set", "org.mate.NotificationDaemon", "do-not-disturb"};
  }
}

}  // namespace

void DoNotDisturbDesk::startProbe() {
  probe_ = desk_.start({DO_NOT_DISTURB_PROBE});
  if (!desk_.until([&] { return desk_.bus().hasOwner(kProbe); })) {
    throw std::runtime_error("the probe did not start: " + probe_->errorOutput());
  }
}

bool DoNotDisturbDesk::turn(const std::string& onOrOff) {
  return desk_.bus().call(kProbe, "/", std::string(kProbe) + "." + onOrOff, {}).has_value();
}

bool DoNotDisturbDesk::scriptFailed(int number) {
  const std::string line = "NSAppleScriptErrorNumber = \"" + std::to_string(number) + "\"";
  return probe_->waitForLine(line).has_value();
}

void DoNotDisturbDesk::quitProbe() {
  if (probe_->terminate(harness::kPatience).signal != 0) {
    throw std::runtime_error("the probe did not end by itself: " + probe_->errorOutput());
  }
}

int DoNotDisturbDesk::complaints(const std::string& topic) const {
  std::istringstream lines(probe_->errorOutput());
  int count = 0;
  for (std::string line; std::getline(lines, line);) {
    if (line.find(topic) != std::string::npos) ++count;
  }
  return count;
}

std::optional<bool> DoNotDisturbDesk::isOn(NotificationDaemon kind) const {
  return harness::doNotDisturb(desk_, kind);
}

bool DoNotDisturbDesk::becomes(NotificationDaemon kind, bool on) const {
  return desk_.until([&] { return isOn(kind) == on; });
}

void DoNotDisturbDesk::switchByHand(NotificationDaemon kind, bool on) const {
  const std::string value = on ? "true" : "false";
  if (kind == NotificationDaemon::Lxqt) {
    desk_.home().writeConfig("lxqt/notifications.conf", "[General]\ndoNotDisturb=" + value + "\n");
    return;
  }
  std::vector<std::string> command = writer(kind);
  command.push_back(value);
  if (!desk_.run(command).succeeded()) throw std::runtime_error("cannot run " + command.front());
}
