#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/harness/XDesk.h"

inline constexpr harness::WindowManager kWindowManagers[] = {
    harness::WindowManager::Openbox, harness::WindowManager::Xfwm4, harness::WindowManager::Marco,
    harness::WindowManager::Icewm};
[[nodiscard]] std::string nameOfWindowManager(
    const testing::TestParamInfo<harness::WindowManager>& info);

/// What a foreign program's window says of itself.
struct ForeignWindow {
  std::string name = {};
  std::string className = "Foreign";
  std::string type = {};   // as "DIALOG"; empty: none
  std::string state = {};  // as "SKIP_TASKBAR"; empty: none
  xcb_window_t transientFor = XCB_NONE;
  std::string gtkApplicationId = {};
  harness::Rect area{100, 100, 200, 150};
};

/// A desktop with foreign windows on it, and the probe, which hides and shows them.
class ApplicationsDesk {
 public:
  explicit ApplicationsDesk(harness::WindowManager windowManager);

  [[nodiscard]] harness::XDesk& desk() { return desk_; }

  /// Opens a window on the test's own connection; returns once it is managed and on the screen.
  xcb_window_t open(const ForeignWindow& window);
  /// Many at once.
  std::vector<xcb_window_t> openMany(int count);
  /// A real program's: xmessage.
  xcb_window_t openProgram(const std::string& title, const harness::Rect& area);
  /// Returns once it is there.
  void moveToWorkspace(xcb_window_t window, std::uint32_t workspace);
  void minimise(xcb_window_t window);
  /// Returns once it is the active one.
  void activate(xcb_window_t window);

  void startProbe();
  [[nodiscard]] harness::Process& probe() { return *probe_; }
  /// Has the probe carry out a line of commands, and waits for its "done".
  void tell(const std::string& commands);
  /// As `list` prints it, without "app ".
  [[nodiscard]] std::vector<std::string> list();
  struct Cost {
    int requests;
    int roundTrips;
  };
  [[nodiscard]] Cost cost();

  [[nodiscard]] bool isMinimised(xcb_window_t window) const;
  [[nodiscard]] bool isMarked(xcb_window_t window) const;
  /// By the X server itself: xfwm4 goes on calling a window active that it has minimised.
  [[nodiscard]] bool hasKeyboard(xcb_window_t window) const;
  [[nodiscard]] std::uint32_t workspace(xcb_window_t window) const;
  [[nodiscard]] std::uint32_t currentWorkspace() const;
  /// Waits for it.
  [[nodiscard]] testing::AssertionResult allMinimised(const std::vector<xcb_window_t>& windows);
  /// Waits until they are on the screen again and nothing is hidden any more.
  [[nodiscard]] testing::AssertionResult allShown(const std::vector<xcb_window_t>& windows);
  /// Bottom to top, those of these only.
  [[nodiscard]] std::vector<xcb_window_t> stacking(const std::vector<xcb_window_t>& among) const;

 private:
  xcb_window_t create(const ForeignWindow& window);
  void setAtom(xcb_window_t window, const std::string& property, const std::string& value);
  [[nodiscard]] bool isManaged(xcb_window_t window) const;

  harness::XDesk desk_;
  std::string fifo_;
  std::unique_ptr<harness::Process> probe_;
};
