#pragma once

#include <chrono>
#include <optional>
#include <vector>

#include "desktop/harness/Process.h"
#include "desktop/harness/Screen.h"

namespace harness {

/// Finds a tray icon by eye: it is what changed in the panels since the finder was made. So make
/// it before the program starts, with panels on which nothing else moves.
class TrayIconFinder {
 public:
  TrayIconFinder(const Screen& screen, const std::vector<Rect>& panels);

  /// The icon's pixels' bounds once they have come to rest, in root coordinates; absent when
  /// nothing appears within `patience`.
  [[nodiscard]] std::optional<Rect> find(std::chrono::milliseconds patience = kPatience) const;

 private:
  struct Panel {
    Rect area;
    Image before;
  };
  [[nodiscard]] std::optional<Rect> changed(const Panel& panel, const Image& now) const;

  const Screen& screen_;
  std::vector<Panel> panels_;
};

}  // namespace harness
