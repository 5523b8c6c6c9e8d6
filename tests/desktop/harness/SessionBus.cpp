#include "desktop/harness/SessionBus.h"

#include <algorithm>
#include <fstream>
#include <regex>
#include <stdexcept>

namespace harness {

namespace fs = std::filesystem;

namespace {

constexpr const char* kServiceFolder = "/usr/share/dbus-1/services";
constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";
constexpr const char* kWatcherPath = "/StatusNotifierWatcher";

// What programs lean on and what shows nothing by itself.
const std::string kActivatable[] = {"org.a11y.Bus", "org.xfce.Xfconf", "ca.desrt.dconf",
                                    "org.mate.panel.applet.NotificationAreaAppletFactory"};

// Packages name their service files freely, so that the name inside the file counts.
bool isActivatable(const fs::path& serviceFile) {
  const std::string text = textOf(serviceFile);
  return std::ranges::any_of(kActivatable, [&](const std::string& name) {
    return text.find("\nName=" + name + "\n") != std::string::npos;
  });
}

void offerServices(const fs::path& folder) {
  fs::create_directories(folder);
  if (!fs::exists(kServiceFolder)) return;
  for (const fs::directory_entry& file : fs::directory_iterator(kServiceFolder)) {
    if (isActivatable(file.path())) fs::copy_file(file, folder / file.path().filename());
  }
}

}  // namespace

SessionBus::SessionBus(const PrivateHome& home, const Environment& environment)
    : services_(home.runtime() / "bus-services"), environment_(environment) {
  offerServices(services_);
  const fs::path configuration = home.runtime() / "bus.conf";
  std::ofstream(configuration) << filled(
      textOf(HARNESS_FOLDER "/bus.conf"),
      {{"socket", home.runtime() / "bus"}, {"services", services_}});
  process_ = std::make_unique<Process>(
      Command{{"dbus-daemon", "--nofork", "--nopidfile", "--print-address",
               "--config-file=" + configuration.string()},
              environment});
  const std::optional<std::string> address = process_->waitForLine("^unix:");
  if (!address) throw std::runtime_error("no session bus: " + process_->errorOutput());
  address_ = *address;
  environment_["DBUS_SESSION_BUS_ADDRESS"] = address_;
}

void SessionBus::offer(const std::string& name, const std::string& program) const {
  std::ofstream(services_ / (name + ".service"))
      << "[D-BUS Service]\nName=" << name << "\nExec=" << program << '\n';
  if (!call("org.freedesktop.DBus", "/", "org.freedesktop.DBus.ReloadConfig", {})) {
    throw std::runtime_error("the bus does not read its services again");
  }
}

bool SessionBus::hasOwner(const std::string& name) const {
  const auto reply = call("org.freedesktop.DBus", "/org/freedesktop/DBus",
                          "org.freedesktop.DBus.NameHasOwner", {"string:" + name});
  return reply && reply->find("true") != std::string::npos;
}

std::optional<std::string> SessionBus::call(const std::string& service, const std::string& path,
                                            const std::string& method,
                                            const std::vector<std::string>& arguments) const {
  Command command{{"dbus-send", "--session", "--print-reply=literal", "--reply-timeout=10000",
                   "--dest=" + service, path, method},
                  environment_};
  command.argv.insert(command.argv.end(), arguments.begin(), arguments.end());
  const RunResult result = runToEnd(command);
  return result.succeeded() ? std::optional(result.output) : std::nullopt;
}

std::optional<std::string> SessionBus::property(const std::string& service, const std::string& path,
                                                const std::string& interface,
                                                const std::string& name) const {
  return call(service, path, "org.freedesktop.DBus.Properties.Get",
              {"string:" + interface, "string:" + name});
}

bool SessionBus::hasTrayHost() const {
  const auto host = property(kWatcher, kWatcherPath, kWatcher, "IsStatusNotifierHostRegistered");
  return host && host->find("true") != std::string::npos;
}

std::optional<std::pair<std::string, std::string>> SessionBus::trayItem() const {
  const auto items = property(kWatcher, kWatcherPath, kWatcher, "RegisteredStatusNotifierItems");
  static const std::regex kItem("(:[0-9.]+)(/[A-Za-z]+)");
  std::smatch parts;
  if (!items || !std::regex_search(*items, parts, kItem)) return std::nullopt;
  return std::pair(parts[1].str(), parts[2].str());
}

}  // namespace harness
