#include "contract/LinuxContractDesk.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <utility>

#include "platform/carbon/KeyCodes.h"

namespace contract {
namespace {

using namespace std::chrono_literals;
using linux_desktop::LinuxDesktop;

using platform::controlKey;
using platform::optionKey;

constexpr const char* kSink = "speakers";

void moveInto(const harness::Desk& desk) {
  static const bool moved = [&] {
    clearenv();
    for (const auto& [name, value] : desk.environment()) setenv(name.c_str(), value.c_str(), 1);
    return true;
  }();
  static_cast<void>(moved);
}

std::vector<std::string> keysOf(std::uint32_t keyCode, std::uint32_t modifiers) {
  const std::pair<std::uint32_t, const char*> known[] = {{controlKey, "ctrl"}, {optionKey, "alt"}};
  const std::map<std::uint32_t, std::string> letters{{platform::kVK_ANSI_J, "j"},
                                                     {platform::kVK_ANSI_K, "k"}};
  std::vector<std::string> keys;
  for (const auto& [bit, name] : known)
    if ((modifiers & bit) != 0) keys.emplace_back(name);
  keys.push_back(letters.at(keyCode));
  return keys;
}

}  // namespace

LinuxContractDesk::LinuxContractDesk(Surroundings surroundings) : around_(std::move(surroundings)) {
  moveInto(around_.desk);
  std::filesystem::remove_all(around_.desk.home().config() / kProgram);
  std::filesystem::remove_all(autostart());
  icon_.emplace(around_.screen, around_.panels);
  start();
}

LinuxContractDesk::~LinuxContractDesk() {
  stop();
  if (sink_) sound().remove(*sink_);
}

// --- The program ---

void LinuxContractDesk::start() {
  auto opened = LinuxDesktop::open(argc_, argv_);
  if (const int* status = std::get_if<int>(&opened)) {
    throw std::runtime_error("no desktop, status " + std::to_string(*status));
  }
  desktop_ = std::move(std::get<0>(opened));
}

void LinuxContractDesk::stop() {
  if (!desktop_) return;
  // What Qt has queued for the first turn of the loop it does not give back without one.
  auto& loop = desktop().mainLoop;
  const auto turn = loop.startTimer(0ms, [&loop] { loop.stop(); });
  loop.run();
  desktop_.reset();
}

bool LinuxContractDesk::runUntil(const std::function<bool()>& fact) {
  auto& loop = desktop().mainLoop;
  const auto end = loop.now() + 5s;
  bool holds = fact();
  while (!holds && loop.now() < end) {
    const auto look = loop.startTimer(5ms, [&loop] { loop.stop(); });
    loop.run();
    holds = fact();
  }
  return holds;
}

// --- Sound ---

// Started by the first case that needs it, without any device.
harness::SoundServer& LinuxContractDesk::sound() {
  static harness::SoundServer server(harness::SoundServerKind::PulseAudio,
                                     around_.desk.environment(), {});
  return server;
}

void LinuxContractDesk::setOutputDevice(bool present) {
  if (present) {
    sink_ = sound().addSink(kSink);
  } else if (sink_) {
    sound().remove(*std::exchange(sink_, std::nullopt));
  }
}

bool LinuxContractDesk::isMuted() {
  return sound().sinkMuted(kSink);
}

void LinuxContractDesk::muteFromOutside(bool muted) {
  sound().pactl({"set-sink-mute", kSink, muted ? "1" : "0"});
}

// --- The icon and the keyboard ---

bool LinuxContractDesk::isItemThere() {
  place_ = icon_->find(0ms);
  return place_.has_value();
}

void LinuxContractDesk::clickItem(platform::NSEventType type) {
  const harness::Rect place = place_.value();
  around_.input.click(
      place.x + place.width / 2, place.y + place.height / 2,
      type == platform::NSEventType::RightMouseUp ? harness::Button::Right : harness::Button::Left);
}

void LinuxContractDesk::pressLetter(std::uint32_t keyCode, std::uint32_t modifiers) {
  for (const std::string& key : keysOf(keyCode, modifiers)) around_.input.keyDown(key);
}

void LinuxContractDesk::releaseLetter(std::uint32_t keyCode, std::uint32_t modifiers) {
  for (const std::string& key : keysOf(keyCode, modifiers)) around_.input.keyUp(key);
}

// --- Files ---

std::string LinuxContractDesk::makePicture() {
  static int last = 0;
  const auto path = around_.desk.home().home() / ("picture " + std::to_string(++last) + ".png");
  harness::writePng(around_.screen.whole(), path);
  return path;
}

void LinuxContractDesk::addLoginItem(const std::optional<std::string>& path) {
  const harness::PrivateHome& home = around_.desk.home();
  const std::string name = "autostart/other-" + std::to_string(++loginItems_) + ".desktop";
  const std::string program = path ? "\nExec=" + *path : "";
  home.writeConfig(name, "[Desktop Entry]\nType=Application\nName=Other" + program + "\n");
  // An hour ago, then a minute later each.
  std::filesystem::last_write_time(
      home.config() / name,
      std::filesystem::file_time_type::clock::now() - 60min + loginItems_ * 1min);
}

bool LinuxContractDesk::startsAtLogin(const std::string& path) {
  if (!std::filesystem::exists(autostart())) return false;
  return std::ranges::any_of(
      std::filesystem::directory_iterator(autostart()), [&](const auto& entry) {
        return harness::textOf(entry.path()).find("\nExec=" + path + "\n") != std::string::npos;
      });
}

}  // namespace contract
