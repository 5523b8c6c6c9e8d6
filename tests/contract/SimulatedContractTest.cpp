#include <algorithm>

#include "contract/ContractDesk.h"
#include "desktop/simulated/SimulatedDesktop.h"
#include "platform/carbon/KeyCodes.h"

namespace contract {
namespace {

using namespace std::chrono_literals;

constexpr platform::AudioObjectPropertyAddress kMute{platform::kAudioDevicePropertyMute,
                                                     platform::kAudioDevicePropertyScopeOutput, 0};

class SimulatedContractDesk final : public ContractDesk {
 public:
  SimulatedContractDesk() {
    setMonitors({{1280, 720}, {1024, 600}});
    desk_->keys.reserved.insert({platform::kVK_ANSI_C, platform::controlKey});
  }

  [[nodiscard]] const platform::Desktop& desktop() override { return desk_->desktop; }

  [[nodiscard]] bool runUntil(const std::function<bool()>& fact) override {
    const platform::MonotonicTime end = desk_->loop.now() + 5s;
    while (!fact() && desk_->loop.now() < end) desk_->loop.advance(5ms);
    return fact();
  }

  void nextRunOfTheProgram() override {
    auto next = std::make_unique<simulated::SimulatedDesktop>();
    next->settings.values = desk_->settings.values;
    desk_ = std::move(next);
  }

  void setOutputDevice(bool present) override {
    if (device_) desk_->audio.removeProperty(*device_, kMute);
    device_ = present ? std::optional(++lastDevice_) : std::nullopt;
    if (device_) desk_->audio.addOutputDevice(*device_);
    desk_->audio.setDefaultOutputDevice(device_);
  }
  [[nodiscard]] bool isMuted() override { return desk_->audio.isMuted(device_.value()).value(); }
  void muteFromOutside(bool muted) override {
    desk_->audio.addOutputDevice(device_.value(), muted);
  }

  [[nodiscard]] std::size_t visibleWindows() override {
    return desk_->screen.visibleWindowCount() + desk_->screen.alerts().size();
  }
  void click(platform::NSView& view) override {
    desk_->screen.press(view);
    desk_->screen.release(view);
  }
  [[nodiscard]] bool isItemThere() override { return desk_->tray.hasItem(); }
  void clickItem(platform::NSEventType type) override {
    type == platform::NSEventType::LeftMouseUp ? desk_->tray.leftClick() : desk_->tray.rightClick();
  }
  void answerAlert(std::size_t button) override { desk_->screen.answerAlert(button); }

  void pressLetter(std::uint32_t keyCode, std::uint32_t modifiers) override {
    desk_->keys.press({keyCode, modifiers});
  }
  void releaseLetter(std::uint32_t keyCode, std::uint32_t modifiers) override {
    desk_->keys.release({keyCode, modifiers});
  }

  void setMonitors(const std::vector<platform::NSSize>& sizes) override {
    desk_->displays.list.clear();
    desk_->windowsOnScreen.list.emplace();
    double right = 0;
    for (const auto& [width, height] : sizes) {
      const std::string id = "M" + std::to_string(desk_->displays.list.size());
      desk_->displays.list.push_back(
          {id, {right, sizes.front().height - height, width, height}, 1});
      desk_->pictures.pictures.try_emplace(id, "/pictures/" + id);
      desk_->pictures.pictureOptions.try_emplace(id, platform::Dictionary{{"scaling", 3}});
      desk_->windowsOnScreen.addDesktopPicture(
          static_cast<std::uint32_t>(desk_->displays.list.size()), id,
          static_cast<std::size_t>(width), static_cast<std::size_t>(height));
      right += width;
    }
    desk_->displays.changed();
  }
  void goToSpace(std::uint32_t) override { desk_->workspaces.changed(); }
  void changeLayout(const platform::port::ScreenId& screen) override {
    const auto present = desk_->pictures.pictureOptions.at(screen).find("scaling")->second;
    desk_->pictures.pictureOptions[screen] = {{"scaling", present.as<std::int64_t>().value() + 1}};
  }
  [[nodiscard]] std::string layout(const platform::port::ScreenId& screen) override {
    return platform::description(desk_->pictures.pictureOptions.at(screen));
  }
  [[nodiscard]] std::string makePicture() override {
    return "/pictures/new " + std::to_string(++lastPicture_);
  }
  void addLoginItem(const std::optional<std::string>& path) override {
    desk_->startedAtLogin.add(path);
  }
  [[nodiscard]] bool startsAtLogin(const std::string& path) override {
    return std::ranges::count(desk_->startedAtLogin.paths(), path) == 1;
  }
  void openApplication(const std::string& title) override {
    desk_->applications.list.push_back(
        {++lastApplication_, title, platform::NSApplicationActivationPolicy::Regular});
  }
  [[nodiscard]] bool isApplicationSeen() override {
    return !desk_->applications.hidden.contains(lastApplication_);
  }

 private:
  std::unique_ptr<simulated::SimulatedDesktop> desk_ =
      std::make_unique<simulated::SimulatedDesktop>();
  std::optional<platform::AudioObjectID> device_;
  platform::AudioObjectID lastDevice_ = 41;
  platform::port::ApplicationId lastApplication_ = 0;
  int lastPicture_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Simulated, DesktopContract,
                         ::testing::Values(DeskKind{
                             "Simulated",
                             [] { return std::make_unique<SimulatedContractDesk>(); }}),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace contract
