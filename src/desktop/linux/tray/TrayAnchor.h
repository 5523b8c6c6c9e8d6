#pragma once

#include <QPoint>
#include <QRect>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/linux/tray/StatusItemAnchor.h"
#include "desktop/linux/xserver/XPanels.h"

namespace linux_desktop {

/// Where the icon is, as well as it can be known. Trays of today do not tell, so the pointer does,
/// which is on the icon when it is clicked; before the first click it is a guess from the panels.
/// Those are known on an X server only. Needs the QGuiApplication.
class TrayAnchor {
 public:
  /// The best that is known now. Asks the X server.
  [[nodiscard]] Anchor anchor() const;

  // For the tray itself.
  /// The pointer is on the icon now.
  void rememberPointer();
  /// Forgets the last click: the icon is now shown by another program or another way.
  void forgetPointer() { click_.reset(); }
  /// The process that draws the icon; 0 for unknown.
  void setHostProcess(std::uint32_t pid) { hostPid_ = pid; }
  /// Tells the icon's own rectangle; empty when it cannot be known.
  void setIconGeometry(std::function<QRect()> geometry) { iconGeometry_ = std::move(geometry); }

 private:
  struct Click {
    QPoint point;
    bool onPanel = false;
  };

  using Panels = std::vector<XPanel>;
  [[nodiscard]] Panels panels() const;
  [[nodiscard]] std::optional<Anchor> atLastClick(const Panels& panels) const;
  [[nodiscard]] std::optional<Anchor> atIcon(const Panels& panels) const;
  [[nodiscard]] std::optional<Anchor> fromPanels(const Panels& panels) const;

  std::unique_ptr<XServer> server_ = XServer::connect();
  std::optional<Click> click_;
  std::uint32_t hostPid_ = 0;
  std::function<QRect()> iconGeometry_;
};

}  // namespace linux_desktop
