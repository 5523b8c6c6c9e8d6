#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "contract/ContractDesk.h"
#include "desktop/harness/Desk.h"
#include "desktop/harness/Input.h"
#include "desktop/harness/Screen.h"
#include "desktop/linux/LinuxDesktop.h"

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
  ~LinuxContractDesk() override;

  [[nodiscard]] const platform::Desktop& desktop() override { return desktop_->desktop(); }
  [[nodiscard]] bool runUntil(const std::function<bool()>& fact) override;
  void nextRunOfTheProgram() override {
    stop();
    start();
  }

  void setOutputDevice(bool present) override;
  [[nodiscard]] bool isMuted() override;
  void muteFromOutside(bool muted) override;

  [[nodiscard]] bool isItemThere() override;
  void clickItem(platform::NSEventType type) override;
  void pressLetter(std::uint32_t keyCode, std::uint32_t modifiers) override;
  void releaseLetter(std::uint32_t keyCode, std::uint32_t modifiers) override;

  [[nodiscard]] std::string makePicture() override;
  void addLoginItem(const std::optional<std::string>& path) override;
  [[nodiscard]] bool startsAtLogin(const std::string& path) override;

 protected:
  static constexpr const char* kProgram = "calmdeck";

  explicit LinuxContractDesk(Surroundings surroundings);
  void start();
  void stop();

 private:
  [[nodiscard]] harness::SoundServer& sound();
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
