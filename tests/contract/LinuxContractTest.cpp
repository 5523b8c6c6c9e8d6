#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <utility>

#include "contract/ContractDesk.h"
#include "desktop/harness/XDesk.h"
#include "desktop/linux/LinuxDesktop.h"
#include "platform/carbon/KeyCodes.h"

namespace contract {
namespace {

using namespace std::chrono_literals;
using harness::Rect;
using linux_desktop::LinuxDesktop;

using platform::controlKey;
using platform::optionKey;

constexpr const char* kProgram = "calmdeck";
constexpr const char* kSink = "speakers";
constexpr const char* kSource = "microphone";

/// The private desktop that all cases of the process share, since Qt keeps its session bus for as
/// long as the process lives. The process's surroundings are the desktop's from here on.
harness::XDesk& surroundings() {
  static harness::XDesk desk({.windowManager = harness::WindowManager::Openbox,
                              .panel = harness::Panel::XfcePanel,
                              .icons = harness::DesktopIcons::Xfdesktop});
  static const bool moved = [] {
    clearenv();
    for (const auto& [name, value] : desk.environment()) setenv(name.c_str(), value.c_str(), 1);
    return true;
  }();
  static_cast<void>(moved);
  return desk;
}

class LinuxContractDesk final : public ContractDesk {
 public:
  LinuxContractDesk() {
    std::filesystem::remove_all(x_.home().config() / kProgram);
    std::filesystem::remove_all(autostart());
    icon_.emplace(x_.screen(), x_.panelAreas());
    start();
  }
  ~LinuxContractDesk() override {
    stop();
    if (sink_) setOutputDevice(false);
    setMicrophone(std::nullopt);
    if (monitorsChanged_) x_.server().setMonitors(harness::DeskOptions{}.monitors);
  }

  [[nodiscard]] const platform::Desktop& desktop() override { return desktop_->desktop(); }

  [[nodiscard]] bool runUntil(const std::function<bool()>& fact) override {
    auto& loop = desktop().mainLoop;
    const auto end = loop.now() + 5s;
    while (!fact() && loop.now() < end) {
      const auto look = loop.startTimer(5ms, [&loop] { loop.stop(); });
      loop.run();
    }
    return fact();
  }

  void nextRunOfTheProgram() override {
    stop();
    start();
  }

  void setOutputDevice(bool present) override {
    if (present) {
      sink_ = sound().addSink(kSink);
    } else if (sink_) {
      sound().remove(*sink_);
      sink_.reset();
    }
  }
  [[nodiscard]] bool isMuted() override { return sound().sinkMuted(kSink); }
  void muteFromOutside(bool muted) override {
    sound().pactl({"set-sink-mute", kSink, muted ? "1" : "0"});
  }

  void setMicrophone(std::optional<int> level) override {
    if (source_) sound().remove(*std::exchange(source_, std::nullopt));
    if (!level) return;
    source_ = sound().addSource(kSource);
    sound().pactl({"set-source-volume", kSource, std::to_string(*level) + "%"});
  }
  [[nodiscard]] int microphoneLevel() override {
    if (sound().sourceMuted(kSource)) return 0;
    return (sound().sourceVolumes(kSource).front() * 100 + 32768) / 65536;
  }

  [[nodiscard]] std::size_t visibleWindows() override { return ownWindows().size(); }
  void click(platform::NSView&) override {
    const Rect area = ownWindows().back().area;  // its content is the view
    x_.input().click(area.x + area.width / 2, area.y + area.height / 2);
  }
  [[nodiscard]] bool isItemThere() override {
    place_ = icon_->find(0ms);
    return place_.has_value();
  }
  void clickItem(platform::NSEventType type) override {
    const Rect place = place_.value();
    x_.input().click(place.x + place.width / 2, place.y + place.height / 2,
                     type == platform::NSEventType::RightMouseUp ? harness::Button::Right
                                                                 : harness::Button::Left);
  }
  void answerAlert(std::size_t button) override {
    EXPECT_TRUE(runUntil([this] {
      const auto windows = ownWindows();
      return !windows.empty() && x_.windows().active() == windows.back().id;
    }));
    while (button-- > 0) x_.input().key("Tab");
    x_.input().key("space");
  }

  void pressLetter(std::uint32_t keyCode, std::uint32_t modifiers) override {
    for (const std::string& key : keysOf(keyCode, modifiers)) x_.input().keyDown(key);
  }
  void releaseLetter(std::uint32_t keyCode, std::uint32_t modifiers) override {
    for (const std::string& key : keysOf(keyCode, modifiers)) x_.input().keyUp(key);
  }

  void setMonitors(const std::vector<platform::NSSize>& sizes) override {
    std::vector<Rect> monitors;
    for (const auto& [width, height] : sizes) {
      monitors.push_back({monitors.empty() ? 0 : monitors.back().right(), 0,
                          static_cast<int>(width), static_cast<int>(height)});
    }
    if (monitors == x_.server().monitors()) return;
    x_.server().setMonitors(monitors);
    monitorsChanged_ = true;
  }
  void goToSpace(std::uint32_t space) override {
    x_.x().askWindowManager(x_.x().root(), "_NET_CURRENT_DESKTOP", {space, XCB_CURRENT_TIME});
  }
  void changeLayout(const platform::port::ScreenId& screen) override {
    static int last = 0;
    const std::string style = ++last % 2 == 0 ? "3" : "4";
    EXPECT_TRUE(x_.run({"xfconf-query", "-c", "xfce4-desktop", "-p", styleOf(screen), "-n", "-t",
                        "int", "-s", style})
                    .succeeded());
  }
  [[nodiscard]] std::string layout(const platform::port::ScreenId& screen) override {
    return x_.run({"xfconf-query", "-c", "xfce4-desktop", "-p", styleOf(screen)}).output;
  }
  [[nodiscard]] std::string makePicture() override {
    static int last = 0;
    const auto path = x_.home().home() / ("picture " + std::to_string(++last) + ".png");
    harness::writePng(x_.screen().whole(), path);
    return path;
  }
  void addLoginItem(const std::optional<std::string>& path) override {
    const std::string name = "autostart/other-" + std::to_string(++loginItems_) + ".desktop";
    const std::string program = path ? "\nExec=" + *path : "";
    x_.home().writeConfig(name, "[Desktop Entry]\nType=Application\nName=Other" + program + "\n");
    // An hour ago, then a minute later each.
    std::filesystem::last_write_time(
        x_.home().config() / name,
        std::filesystem::file_time_type::clock::now() - 60min + loginItems_ * 1min);
  }
  [[nodiscard]] bool startsAtLogin(const std::string& path) override {
    if (!std::filesystem::exists(autostart())) return false;
    return std::ranges::any_of(std::filesystem::directory_iterator(autostart()),
                               [&](const auto& entry) {
                                 std::ifstream file(entry.path());
                                 const std::string text(std::istreambuf_iterator<char>(file), {});
                                 return text.find("\nExec=" + path + "\n") != std::string::npos;
                               });
  }
  void openApplication(const std::string& title) override {
    application_ = x_.openWindow(title, {100, 100, 300, 200}).id;
  }
  [[nodiscard]] bool isApplicationSeen() override {
    const auto window = x_.windows().info(application_);
    return window && window->viewable;
  }

 private:
  static std::string styleOf(const platform::port::ScreenId& screen) {
    return "/backdrop/screen0/monitor" + screen + "/workspace0/image-style";
  }
  [[nodiscard]] std::filesystem::path autostart() const { return x_.home().config() / "autostart"; }

  void start() {
    auto opened = LinuxDesktop::open(argc_, argv_);
    if (const int* status = std::get_if<int>(&opened)) {
      throw std::runtime_error("no desktop, status " + std::to_string(*status));
    }
    desktop_ = std::move(std::get<0>(opened));
  }

  void stop() {
    // What Qt has queued for the first turn of the loop it does not give back without one.
    auto& loop = desktop().mainLoop;
    const auto turn = loop.startTimer(0ms, [&loop] { loop.stop(); });
    loop.run();
    desktop_.reset();
  }

  [[nodiscard]] static std::vector<std::string> keysOf(std::uint32_t keyCode,
                                                       std::uint32_t modifiers) {
    const std::pair<std::uint32_t, const char*> known[] = {{controlKey, "ctrl"},
                                                           {optionKey, "alt"}};
    const std::map<std::uint32_t, std::string> letters{{platform::kVK_ANSI_J, "j"},
                                                       {platform::kVK_ANSI_K, "k"}};
    std::vector<std::string> keys;
    for (const auto& [bit, name] : known)
      if ((modifiers & bit) != 0) keys.emplace_back(name);
    keys.push_back(letters.at(keyCode));
    return keys;
  }

  [[nodiscard]] std::vector<harness::WindowInfo> ownWindows() const {
    std::vector<harness::WindowInfo> own = x_.windows().all();
    std::erase_if(own, [](const harness::WindowInfo& window) {
      // A panel, an alert or a cover: the class of each begins with the program's name.
      return !window.viewable || !window.className.starts_with(kProgram);
    });
    return own;
  }

  /// Started by the first case that needs it, without any device.
  static harness::SoundServer& sound() {
    static harness::SoundServer server(harness::SoundServerKind::PulseAudio,
                                       surroundings().environment(), {});
    return server;
  }

  harness::XDesk& x_ = surroundings();
  std::string name_ = kProgram;
  char* arguments_[2] = {name_.data(), nullptr};
  char** argv_ = arguments_;
  int argc_ = 1;
  std::optional<harness::TrayIconFinder> icon_;
  std::optional<Rect> place_;
  std::optional<std::string> sink_;
  std::optional<std::string> source_;
  xcb_window_t application_ = XCB_NONE;
  bool monitorsChanged_ = false;
  int loginItems_ = 0;
  std::unique_ptr<LinuxDesktop> desktop_;
};

INSTANTIATE_TEST_SUITE_P(Linux, DesktopContract,
                         ::testing::Values(DeskKind{
                             "Linux", [] { return std::make_unique<LinuxContractDesk>(); }}),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace contract
