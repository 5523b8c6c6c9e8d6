#include "desktop/harness/Desk.h"

#include <stdexcept>
#include <utility>

namespace harness {

Desk::Desk(const Environment& extra) : environment_(home_.environment()) {
  for (const auto& [name, value] : extra) environment_[name] = value;
}

void Desk::startBus() {
  bus_ = std::make_unique<SessionBus>(home_, environment_);
  environment_["DBUS_SESSION_BUS_ADDRESS"] = bus_->address();
}

void Desk::startSound(SoundServerKind kind) {
  sound_ = std::make_unique<SoundServer>(kind, environment_);
}

void Desk::require(bool ready, const std::string& name, Process& process) {
  if (!ready) throw std::runtime_error(name + " did not become ready: " + process.errorOutput());
}

std::unique_ptr<Process> Desk::start(std::vector<std::string> argv,
                                     const Environment& extra) const {
  Command command{std::move(argv), environment_, home_.home()};
  for (const auto& [name, value] : extra) command.environment[name] = value;
  return std::make_unique<Process>(command);
}

RunResult Desk::run(std::vector<std::string> argv) const {
  return runToEnd({std::move(argv), environment_, home_.home()});
}

}  // namespace harness
