#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
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
  xcb_window_t open(const harness::XWindow& window);
  /// Many at once, of ten applications.
  Windows openMany(int count);
  /// A real program's: xmessage.
  xcb_window_t openProgram(const std::string& title, const harness::Rect& area) {
    return openWindow(title, area).id;
  }
  void close(xcb_window_t window);
  // Each returns once it is so.
  void moveToWorkspace(xcb_window_t window, std::uint32_t workspace);
  void minimise(xcb_window_t window);
  void activate(xcb_window_t window);

  /// Anew, where it has been started.
  void startProgram();
  [[nodiscard]] TestProgram& program() { return *program_; }
  [[nodiscard]] bool until(const std::function<bool()>& fact) { return program_->until(fact); }

  /// Asks for all regular applications, which is begun in the next turn.
  void hide();
  void show();
  /// Asks and asks once more in the next turn, as the mode does.
  void hideAsTheMode();
  [[nodiscard]] std::vector<platform::port::ApplicationInfo> list();

  /// How many requests went to the X server since the last call.
  [[nodiscard]] unsigned requests();

  [[nodiscard]] bool isMinimised(xcb_window_t window) const;
  [[nodiscard]] bool isMarked(xcb_window_t window) const;
  /// By the X server itself: xfwm4 goes on calling a window active that it has minimised.
  [[nodiscard]] bool hasKeyboard(xcb_window_t window) const;
  [[nodiscard]] bool isActive(xcb_window_t window) const { return windows().active() == window; }
  [[nodiscard]] bool isSeen(xcb_window_t window) const;
  [[nodiscard]] std::uint32_t workspace(xcb_window_t window) const;
  /// Waits for it.
  [[nodiscard]] bool allMinimised(const Windows& windows);
  /// Waits until they are on the screen again and nothing is hidden any more.
  [[nodiscard]] bool allShown(const Windows& windows);
  /// Bottom to top, those of these only.
  [[nodiscard]] Windows stacking(const Windows& among) const;

 private:
  std::vector<platform::port::ApplicationId> regular();

  std::optional<TestProgram> program_;
  std::optional<linux_desktop::XApplications> applications_;
  unsigned sequence_ = 0;
};
