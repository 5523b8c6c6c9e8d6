#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "contract/ContractDesk.h"
#include "desktop/harness/Desk.h"
#include "desktop/harness/Input.h"
#include "desktop/harness/Screen.h"
#include "desktop/linux/LinuxDesktop.h"
#include "platform/carbon/KeyCodes.h"

namespace contract {

/// A private desktop that all cases of the process share, since Qt keeps its session bus for as
/// long as the process lives, and what cases see and touch there.
struct Surroundings {
  harness::Desk& desk;
  const harness::Screen& screen;
  const harness::Input& input;
  std::vector<harness::Rect> panels;
};

/// The Linux desktop, but for its windows, which each window system has in its own way. The
/// process's surroundings are those of the desk from the first one on.
class LinuxContractDesk : public ContractDesk {
 public:
  ~LinuxContractDesk() override {
    stop();
    if (sink_) sound().remove(*sink_);
  }

  [[nodiscard]] const platform::Desktop& desktop() override { return desktop_->desktop(); }
  [[nodiscard]] bool runUntil(const std::function<bool()>& fact) override {
    auto& loop = desktop().mainLoop;
    const auto end = loop.now() + std::chrono::seconds(5);
    bool holds = fact();
    while (!holds && loop.now() < end) {
      const auto look = loop.startTimer(std::chrono::milliseconds(5), [&loop] { loop.stop(); });
      loop.run();
      holds = fact();
    }
    return holds;
  }
  void nextRunOfTheProgram() override {
    stop();
    start();
  }

  void setOutputDevice(bool present) override {
    if (present) {
      sink_ = sound().addSink(kSink);
    } else if (sink_) {
      sound().remove(*std::exchange(sink_, std::nullopt));
    }
  }
  [[nodiscard]] bool isMuted() override { return sound().sinkMuted(kSink); }
  void muteFromOutside(bool muted) override {
    sound().pactl({"set-sink-mute", kSink, muted ? "1" : "0"});
  }

  [[nodiscard]] bool isItemThere() override {
    place_ = icon_->find(std::chrono::milliseconds(0));
    return place_.has_value();
  }
  void clickItem(platform::NSEventType type) override {
    const harness::Rect place = place_.value();
    around_.input.click(place.x + place.width / 2, place.y + place.height / 2,
                        type == platform::NSEventType::RightMouseUp ? harness::Button::Right
                                                                    : harness::Button::Left);
  }
  void pressLetter(std::uint32_t keyCode, std::uint32_t modifiers) override {
    for (const std::string& key : keysOf(keyCode, modifiers)) around_.input.keyDown(key);
  }
  void releaseLetter(std::uint32_t keyCode, std::uint32_t modifiers) override {
    for (const std::string& key : keysOf(keyCode, modifiers)) around_.input.keyUp(key);
  }

  [[nodiscard]] std::string makePicture() override {
    static int last = 0;
    const auto path = around_.desk.home().home() / ("picture " + std::to_string(++last) + ".png");
    harness::writePng(around_.screen.whole(), path);
    return path;
  }
  void addLoginItem(const std::optional<std::string>& path) override {
    const harness::PrivateHome& home = around_.desk.home();
    const std::string name = "autostart/other-" + std::to_string(++loginItems_) + ".desktop";
    const std::string program = path ? "\nExec=" + *path : "";
    home.writeConfig(name, "[Desktop Entry]\nType=Application\nName=Other" + program + "\n");
    // An hour ago, then a minute later each.
    std::filesystem::last_write_time(
        home.config() / name,
        std::filesystem::file_time_type::clock::now() - std::chrono::minutes(60 - loginItems_));
  }
  [[nodiscard]] bool startsAtLogin(const std::string& path) override {
    if (!std::filesystem::exists(autostart())) return false;
    return std::ranges::any_of(
        std::filesystem::directory_iterator(autostart()), [&](const auto& entry) {
          return harness::textOf(entry.path()).find("\nExec=" + path + "\n") != std::string::npos;
        });
  }

 protected:
  static constexpr const char* kProgram = "calmdeck";

  explicit LinuxContractDesk(Surroundings surroundings) : around_(std::move(surroundings)) {
    moveInto(around_.desk);
    std::filesystem::remove_all(around_.desk.home().config() / kProgram);
    std::filesystem::remove_all(autostart());
    icon_.emplace(around_.screen, around_.panels);
    start();
  }
  void start() {
    auto opened = linux_desktop::LinuxDesktop::open(argc_, argv_);
    if (const int* status = std::get_if<int>(&opened)) {
      throw std::runtime_error("no desktop, status " + std::to_string(*status));
    }
    desktop_ = std::move(std::get<0>(opened));
  }
  void stop() {
    if (!desktop_) return;
    // What Qt has queued for the first turn of the loop it does not give back without one.
    auto& loop = desktop().mainLoop;
    const auto turn = loop.startTimer(std::chrono::milliseconds(0), [&loop] { loop.stop(); });
    loop.run();
    desktop_.reset();
  }

 private:
  static constexpr const char* kSink = "speakers";

  static void moveInto(const harness::Desk& desk) {
    static const bool moved = [&] {
      clearenv();
      for (const auto& [name, value] : desk.environment()) setenv(name.c_str(), value.c_str(), 1);
      return true;
    }();
    static_cast<void>(moved);
  }
  static std::vector<std::string> keysOf(std::uint32_t keyCode, std::uint32_t modifiers) {
    const std::pair<std::uint32_t, const char*> known[] = {{platform::controlKey, "ctrl"},
                                                           {platform::optionKey, "alt"}};
    const std::map<std::uint32_t, std::string> letters{{platform::kVK_ANSI_J, "j"},
                                                       {platform::kVK_ANSI_K, "k"}};
    std::vector<std::string> keys;
    for (const auto& [bit, name] : known)
      if ((modifiers & bit) != 0) keys.emplace_back(name);
    keys.push_back(letters.at(keyCode));
    return keys;
  }
  /// Started by the first case that needs it, without any device.
  [[nodiscard]] harness::SoundServer& sound() {
    static harness::SoundServer server(harness::SoundServerKind::PulseAudio,
                                       around_.desk.environment(), {});
    return server;
  }
  [[nodiscard]] std::filesystem::path autostart() const {
    return around_.desk.home().config() / "autostart";
  }

  Surroundings around_;
  std::string name_ = kProgram;
  char* arguments_[2] = {name_.data(), nullptr};
  char** argv_ = arguments_;
  int argc_ = 1;
  std::optional<harness::TrayIconFinder> icon_;
  std::optional<harness::Rect> place_;
  std::optional<std::string> sink_;
  int loginItems_ = 0;
  std::unique_ptr<linux_desktop::LinuxDesktop> desktop_;
};

}  // namespace contract
