#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/harness/XDesk.h"

namespace bench {

/// A desktop on which all of the mode has something to do: two monitors with a picture and files on
/// it, dunst, PulseAudio with a sink "out1", and windows of other programs.
class ModeDesk {
 public:
  /// The windows leave the icons and a spot on each monitor free. The bench's own environment
  /// becomes that of the desktop. Throws std::runtime_error when something does not come.
  explicit ModeDesk(int windows);

  [[nodiscard]] harness::XDesk& desk() { return *desk_; }
  /// Ten programs' windows, on a connection of their own.
  [[nodiscard]] const std::vector<xcb_window_t>& windows() const { return windows_; }
  /// What the mode puts on each monitor.
  [[nodiscard]] std::filesystem::path chosenPicture() const;
  /// Writes the settings of a Calmdeck that is yet to start: these features and no others are
  /// switched on, by their keys. `more` are further members of the file.
  void choose(const std::vector<std::string_view>& features, std::string_view more = {}) const;
  [[nodiscard]] pid_t serverPid() { return desk_->server().process().pid(); }

  /// Where the icons are, and a bare spot of each monitor; in root coordinates.
  [[nodiscard]] static harness::Rect iconColumn() { return {0, 0, 110, 480}; }
  [[nodiscard]] static std::vector<harness::Rect> bareSpots();

 private:
  void furnish();
  void openWindow(int number);

  std::unique_ptr<harness::XDesk> desk_;
  std::unique_ptr<harness::XConnection> others_;
  std::vector<xcb_window_t> windows_;
};

}  // namespace bench
