#include "desktop/harness/Desk.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "desktop/harness/Screen.h"

namespace harness {

std::string chosenPicture(const std::filesystem::path& picture) {
  std::string text;
  for (const char c : picture.string())
    text += c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
  return R"("kUserdefaultsSelectedWallpaper": ")" + text + "\"";
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
  constexpr const char* kName = "org.calmdeck.Calmdeck";
  if (!until([this] { return bus_->hasOwner(kName); }))
    throw std::runtime_error("Calmdeck is not on the bus");
  const RunResult asked = run({"gapplication", "action", kName, action});
  if (!asked.succeeded()) throw std::runtime_error(action + ": " + asked.errorOutput);
}

RunResult Desk::run(std::vector<std::string> argv) const {
  return runToEnd({std::move(argv), environment_, home_.home()});
}

}  // namespace harness
