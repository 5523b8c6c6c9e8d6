#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/harness/PrivateHome.h"

namespace harness {

/// A private session bus. By itself it starts only what programs lean on and what was offered, so
/// that no daemon of the machine turns up uninvited.
class SessionBus {
 public:
  /// `environment` is what started services inherit. Returns when the bus listens.
  SessionBus(const PrivateHome& home, const Environment& environment);

  [[nodiscard]] const std::string& address() const { return address_; }
  [[nodiscard]] Process& process() { return *process_; }

  /// From now on whoever speaks to that name has this program started, by its whole path.
  void offer(const std::string& name, const std::string& program) const;

  [[nodiscard]] bool hasOwner(const std::string& name) const;
  /// Calls a method and gives the reply as dbus-send prints it; absent on an error or when the
  /// answer takes longer than ten seconds. `arguments` in dbus-send's form (`string:x`). A service
  /// that does not run is started if it can be.
  [[nodiscard]] std::optional<std::string> call(const std::string& service, const std::string& path,
                                                const std::string& method,
                                                const std::vector<std::string>& arguments) const;
  /// A property, likewise.
  [[nodiscard]] std::optional<std::string> property(const std::string& service,
                                                    const std::string& path,
                                                    const std::string& interface,
                                                    const std::string& name) const;
  /// Whether somebody shows the icons of the tray.
  [[nodiscard]] bool hasTrayHost() const;
  /// The connection and the path of the icon that it shows; absent while there is none.
  [[nodiscard]] std::optional<std::pair<std::string, std::string>> trayItem() const;

 private:
  std::filesystem::path services_;
  Environment environment_;
  std::unique_ptr<Process> process_;
  std::string address_;
};

}  // namespace harness
