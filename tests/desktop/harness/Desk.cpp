#include "desktop/harness/Desk.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace harness {

std::string chosenPicture(const std::filesystem::path& picture) {
  std::ostringstream text;
  text << R"("kUserdefaultsSelectedWallpaper": )" << std::quoted(picture.string());
  return text.str();
}

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

bool Desk::until(const std::function<bool()>& fact, std::chrono::milliseconds patience) const {
  const bool holds = harness::until(fact, patience);
  if (!holds && calmdeck_ && patience >= kPatience)
    std::cerr << "In vain. Calmdeck wrote:\n"
              << calmdeck_->text(Stream::Output) << calmdeck_->text(Stream::Error);
  return holds;
}

std::unique_ptr<Process> Desk::startCalmdeck(const Environment& extra) {
  iconFinder_.emplace(*screen_, panelAreas());
  auto program = start({CALMDECK_PROGRAM}, extra);
  calmdeck_ = program->record();
  return program;
}

std::unique_ptr<Process> Desk::start(std::vector<std::string> argv,
                                     const Environment& extra) const {
  Command command{std::move(argv), environment_, home_.home()};
  for (const auto& [name, value] : extra) command.environment[name] = value;
  return std::make_unique<Process>(command);
}

std::string Desk::picture(const std::string& name, std::uint32_t colour) const {
  const std::filesystem::path path = home_.home() / name;
  writePng(plain(colour), path);
  return path;
}

void Desk::writeSettings(const std::vector<std::string>& features,
                         const std::string& further) const {
  std::string settings = R"({"kUserdeaultsLaunchAtLogin": false)";
  for (const std::string& each : kAllFeatures) {
    const bool isOn = std::ranges::find(features, each) != features.end();
    settings += R"(, "kUserdefaultsToggle)" + each + (isOn ? "\": true" : "\": false");
  }
  home_.writeConfig("calmdeck/settings.json",
                    settings + (further.empty() ? "" : ", ") + further + "}");
}

void Desk::perform(const std::string& action) const {
  if (!until([this] { return bus_->hasOwner(kCalmdeckName); }))
    throw std::runtime_error("Calmdeck is not on the bus");
  mustRun({"gapplication", "action", kCalmdeckName, action});
}

void Desk::notify(const std::string& summary) const {
  const std::string name = "org.freedesktop.Notifications";
  mustRun({"gdbus", "call", "--session", "--dest", name, "--object-path",
           "/org/freedesktop/Notifications", "--method", name + ".Notify", "mail", "0", "", summary,
           "for you", "[]", "{}", "60000"});
}

RunResult Desk::run(std::vector<std::string> argv) const {
  return runToEnd({std::move(argv), environment_, home_.home()});
}

std::string Desk::outputOf(std::vector<std::string> argv) const {
  const std::string name = argv.front();
  const RunResult result = run(std::move(argv));
  if (!result.succeeded()) throw std::runtime_error(name + ": " + result.errorOutput);
  return result.output;
}

}  // namespace harness
