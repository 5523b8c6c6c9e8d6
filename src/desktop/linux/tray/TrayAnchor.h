#pragma once

#include <QPoint>
#include <QRect>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "desktop/linux/tray/StatusItemAnchor.h"
#include "desktop/linux/windowsystem/OwnWindows.h"

namespace linux_desktop {

/// The panel that lies there.
[[nodiscard]] std::optional<QRect> panelAt(QPoint point, const std::vector<DesktopPanel>& panels);

/// Where the icon is, as well as it can be known. Trays of today do not tell, so the pointer does,
/// which is on the icon when it is clicked, or, where a program may not know the pointer, what the
/// tray told with the click; before the first one it is a guess from the panels. Where several may
/// have the tray it is taken to be on the one nearest to the pointer.
class TrayAnchor {
 public:
  /// `windows` outlives this.
  explicit TrayAnchor(OwnWindows& windows) : windows_(windows) {}

  /// The best that is known now. Asks the window system.
  [[nodiscard]] Anchor anchor() const;
  /// Whether that may be the wrong panel, and nobody is going to tell. Asks the window system.
  [[nodiscard]] bool isGuess() const;

  // For the tray itself.
  /// The icon was clicked at that point.
  void rememberClick(QPoint point);
  /// The same, as the tray has told it: some tell where in their own window it was.
  void rememberTold(QPoint point);
  /// Where the pointer is, which has not been on the icon.
  void rememberPointer(std::optional<QPoint> point) { pointer_ = point; }
  /// Forgets the last click: the icon is now shown by another program or another way.
  void forgetClick() { click_.reset(); }
  /// The process that draws the icon; 0 for unknown.
  void setHostProcess(std::uint32_t pid) { hostPid_ = pid; }
  /// Tells the icon's own rectangle; empty when it cannot be known.
  void setIconGeometry(std::function<QRect()> geometry) { iconGeometry_ = std::move(geometry); }

 private:
  struct Click {
    QPoint point;
    bool onPanel = false;
  };

  using Panels = std::vector<DesktopPanel>;
  [[nodiscard]] std::optional<Anchor> atLastClick(const Panels& panels) const;
  [[nodiscard]] std::optional<Anchor> atIcon(const Panels& panels) const;
  [[nodiscard]] std::optional<Anchor> atHost(const Panels& panels) const;
  [[nodiscard]] std::optional<Anchor> known(const Panels& panels) const;

  OwnWindows& windows_;
  std::optional<Click> click_;
  std::optional<QPoint> pointer_;
  std::uint32_t hostPid_ = 0;
  std::function<QRect()> iconGeometry_;
};

}  // namespace linux_desktop
