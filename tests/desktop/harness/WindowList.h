#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "desktop/harness/XConnection.h"

namespace harness {

/// A program's window as a foreign client finds it.
struct WindowInfo {
  xcb_window_t id = XCB_NONE;
  std::string name;
  std::string instance;   // WM_CLASS, first part
  std::string className;  // WM_CLASS, second part
  std::string type;       // the first of _NET_WM_WINDOW_TYPE, as "DOCK"; empty when it has none
  std::vector<std::string> states;  // of _NET_WM_STATE, as "HIDDEN"
  Rect area;                        // without the frame, in root coordinates
  bool viewable = false;            // it and all its parents are mapped
  bool managed = false;             // it is in _NET_CLIENT_LIST

  [[nodiscard]] bool has(std::string_view state) const;
};

using WindowTest = std::function<bool(const WindowInfo&)>;

/// A test for find(): the class or instance exactly.
[[nodiscard]] WindowTest ofClass(std::string nameOrInstance);

/// The windows of an X server; each question is put to the server anew.
class WindowList {
 public:
  explicit WindowList(const XConnection& x) : x_(x) {}

  /// Every window that has a class or a name, also unmapped and unmanaged ones, bottom to top.
  [[nodiscard]] std::vector<WindowInfo> all() const;
  [[nodiscard]] std::optional<WindowInfo> find(const WindowTest& test) const;
  /// The ids of those that are on the screen.
  [[nodiscard]] std::set<xcb_window_t> viewable() const;
  [[nodiscard]] std::optional<WindowInfo> findViewable(const WindowTest& test) const;
  /// Absent when the window does not exist.
  [[nodiscard]] std::optional<WindowInfo> info(xcb_window_t window) const;
  /// XCB_NONE when none is active, or no window manager says.
  [[nodiscard]] xcb_window_t active() const;
  /// Managed windows, bottom to top.
  [[nodiscard]] std::vector<xcb_window_t> stacking() const;

  /// What a task bar does on a click on the window's button.
  void activate(xcb_window_t window) const;
  /// What a click on the frame's close button does.
  void close(xcb_window_t window) const;

 private:
  void collect(xcb_window_t parent, int depth, std::vector<xcb_window_t>& found) const;
  [[nodiscard]] std::vector<std::string> atomNames(xcb_window_t window, std::string_view property,
                                                   std::string_view prefix) const;

  const XConnection& x_;
};

}  // namespace harness
