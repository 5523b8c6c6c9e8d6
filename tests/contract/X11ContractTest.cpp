#include <string>
#include <vector>

#include "contract/LinuxContractDesk.h"
#include "desktop/harness/XDesk.h"

namespace contract {
namespace {

using harness::Rect;

harness::XDesk& xDesk() {
  static harness::XDesk desk({.windowManager = harness::WindowManager::Openbox,
                              .panel = harness::Panel::XfcePanel,
                              .icons = harness::DesktopIcons::Xfdesktop});
  return desk;
}

class XContractDesk final : public LinuxContractDesk {
 public:
  XContractDesk()
      : LinuxContractDesk({xDesk(), xDesk().screen(), xDesk().input(), xDesk().panelAreas()}) {}
  ~XContractDesk() override {
    stop();
    if (monitorsChanged_) x_.server().setMonitors(harness::DeskOptions{}.monitors);
  }

  [[nodiscard]] std::size_t visibleWindows() override { return ownWindows().size(); }
  void click(platform::NSView&) override {
    const Rect area = ownWindows().back().area;  // its content is the view
    x_.input().click(area.x + area.width / 2, area.y + area.height / 2);
  }
  void answerAlert(std::size_t button) override {
    EXPECT_TRUE(runUntil([this] {
      const auto windows = ownWindows();
      return !windows.empty() && x_.windows().active() == windows.back().id;
    }));
    while (button-- > 0) x_.input().key("Tab");
    x_.input().key("space");
  }

  void setMonitors(const std::vector<platform::NSSize>& sizes) override {
    std::vector<Rect> monitors;
    monitors.reserve(sizes.size());
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
  [[nodiscard]] std::vector<harness::WindowInfo> ownWindows() const {
    std::vector<harness::WindowInfo> own = x_.windows().all();
    std::erase_if(own, [](const harness::WindowInfo& window) {
      // A panel, an alert or a cover: the class of each begins with the program's name.
      return !window.viewable || !window.className.starts_with(kProgram);
    });
    return own;
  }

  harness::XDesk& x_ = xDesk();
  xcb_window_t application_ = XCB_NONE;
  bool monitorsChanged_ = false;
};

INSTANTIATE_TEST_SUITE_P(Linux, DesktopContract,
                         ::testing::Values(DeskKind{
                             "Linux", [] { return std::make_unique<XContractDesk>(); }}),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace contract
