#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/harness/XDesk.h"
#include "desktop/linux/x11/XApplications.h"
#include "desktop/x11/TestProgram.h"

using Windows = std::vector<xcb_window_t>;

/// A desktop with foreign windows on it, and in this process what hides and shows them.
class HidingDesk : public harness::XDesk {
 public:
  explicit HidingDesk(harness::WindowManager windowManager)
      : XDesk({.windowManager = windowManager}) {}

  /// Opens a window on the test's own connection; returns once it is managed and on the screen.
  xcb_window_t open(const harness::XWindow& window) {
    const xcb_window_t id = x().open(window);
    const auto isThere = [&] {
      const auto info = windows().info(id);
      return info && info->managed && info->viewable;
    };
    EXPECT_TRUE(XDesk::until(isThere)) << window.name;
    return id;
  }
  /// Of as many applications.
  Windows openThree() {
    return {open({.className = "A"}), open({.className = "B"}), open({.className = "C"})};
  }
  /// Many at once, of ten applications.
  Windows openMany(int count) {
    Windows windows;
    for (int i = 0; i < count; ++i) {
      windows.push_back(x().open({.name = "many " + std::to_string(i),
                                  .className = "Many" + std::to_string(i % 10),
                                  .area = {10 + i % 50 * 8, 10 + i % 40 * 6, 120, 90}}));
    }
    EXPECT_TRUE(XDesk::until([&] { return stacking(windows).size() == windows.size(); }));
    return windows;
  }
  /// A real program's: xmessage.
  xcb_window_t openProgram(const std::string& title, const harness::Rect& area) {
    return openWindow(title, area).id;
  }
  void close(xcb_window_t window) {
    xcb_destroy_window(x().get(), window);
    EXPECT_TRUE(XDesk::until([&] { return stacking({window}).empty(); }));
  }
  // Each returns once it is so.
  void moveToWorkspace(xcb_window_t window, std::uint32_t number) {
    constexpr std::uint32_t kFromPager = 2;
    x().askWindowManager(window, "_NET_WM_DESKTOP", {number, kFromPager});
    EXPECT_TRUE(XDesk::until([&] { return workspace(window) == number; }));
  }
  void minimise(xcb_window_t window) {
    constexpr std::uint32_t kIconic = 3;
    x().askWindowManager(window, "WM_CHANGE_STATE", {kIconic});
    EXPECT_TRUE(XDesk::until([&] { return isMinimised(window); }));
  }
  void activate(xcb_window_t window) {
    EXPECT_TRUE(XDesk::activate(window));
    if (program_) program_->turn();
  }

  /// Anew, where it has been started.
  void startProgram() {
    applications_.reset();
    program_.reset();
    program_.emplace(environment());
    applications_.emplace(program_->events());
  }
  [[nodiscard]] TestProgram& program() { return *program_; }
  [[nodiscard]] bool until(const std::function<bool()>& fact) { return program_->until(fact); }

  /// Asks for all regular applications, which is begun in the next turn.
  void hide() {
    for (const auto id : regular()) EXPECT_TRUE(applications_->hide(id));
  }
  void show() {
    for (const auto id : regular()) {
      if (applications_->isHidden(id)) applications_->unhide(id);
    }
  }
  /// Asks and asks once more in the next turn, as the mode does.
  void hideAsTheMode() {
    hide();
    program_->turn();
    hide();
  }
  [[nodiscard]] std::vector<platform::port::ApplicationInfo> list() {
    program_->turn();
    return applications_->runningApplications();
  }

  /// How many requests went to the X server since the last call.
  [[nodiscard]] unsigned requests() {
    const unsigned sequence = xcb_no_operation(program_->server().get()).sequence;
    return sequence - std::exchange(sequence_, sequence);
  }

  [[nodiscard]] bool isMinimised(xcb_window_t window) const {
    const auto info = windows().info(window);
    return info && info->has("HIDDEN");
  }
  [[nodiscard]] bool isMarked(xcb_window_t window) const {
    return x().number(window, "_CALMDECK_HIDDEN").has_value();
  }
  /// By the X server itself: xfwm4 goes on calling a window active that it has minimised.
  [[nodiscard]] bool hasKeyboard(xcb_window_t window) const {
    const harness::XReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(x().get(), xcb_get_input_focus(x().get()), nullptr));
    return reply && reply->focus == window;
  }
  [[nodiscard]] bool isActive(xcb_window_t window) const { return windows().active() == window; }
  [[nodiscard]] bool isSeen(xcb_window_t window) const {
    const auto info = windows().info(window);
    // Mutter leaves those mapped that it does not show.
    return info && info->viewable && !info->has("HIDDEN");
  }
  [[nodiscard]] std::uint32_t workspace(xcb_window_t window) const {
    return x().number(window, "_NET_WM_DESKTOP").value_or(UINT32_MAX);
  }
  /// Waits for it.
  [[nodiscard]] bool allMinimised(const Windows& windows) {
    const auto isSo = [this](xcb_window_t window) { return isMinimised(window); };
    return until([&] { return std::ranges::all_of(windows, isSo); });
  }
  /// Waits until they are on the screen again and nothing is hidden any more.
  [[nodiscard]] bool allShown(const Windows& windows) {
    // The mark goes last, when all is put back.
    const auto isSo = [this](xcb_window_t window) {
      return !isMinimised(window) && !isMarked(window);
    };
    return until([&] { return std::ranges::all_of(windows, isSo); });
  }
  /// Bottom to top, those of these only.
  [[nodiscard]] Windows stacking(const Windows& among) const {
    Windows order = windows().stacking();
    // It lists them the wrong way round.
    if (managerKind() == harness::WindowManager::Jwm) std::ranges::reverse(order);
    std::erase_if(order, [&](xcb_window_t window) {
      return std::ranges::find(among, window) == among.end();
    });
    return order;
  }

 private:
  std::vector<platform::port::ApplicationId> regular() {
    std::vector<platform::port::ApplicationId> ids;
    for (const auto& info : applications_->runningApplications()) {
      if (info.activationPolicy == platform::NSApplicationActivationPolicy::Regular)
        ids.push_back(info.id);
    }
    return ids;
  }

  std::optional<TestProgram> program_;
  std::optional<linux_desktop::XApplications> applications_;
  unsigned sequence_ = 0;
};
