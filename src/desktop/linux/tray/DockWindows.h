#pragma once

#include <QRect>
#include <cstdint>
#include <optional>
#include <vector>

namespace linux_desktop {

/// A panel on the screen.
struct DockWindow {
  std::uint32_t id = 0;
  /// In Qt's coordinates.
  QRect geometry;
  /// What the window says of its process; 0 where it says nothing.
  std::uint32_t pid = 0;
};

/// The panels as they stand now, asked of the X server in two round trips. Empty on another window
/// system.
[[nodiscard]] std::vector<DockWindow> dockWindows();

/// The part of the panel that another process draws, in Qt's coordinates: xfce4-panel and
/// mate-panel run their tray that way. Absent when that process has no window inside the panel.
[[nodiscard]] std::optional<QRect> partDrawnBy(std::uint32_t pid, const DockWindow& dock);

}  // namespace linux_desktop
