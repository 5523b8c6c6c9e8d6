#include "desktop/linux/tray/TrayAnchor.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <algorithm>

namespace linux_desktop {
namespace {

std::optional<QRect> panelAt(const QPoint& point, const std::vector<DockWindow>& docks) {
  const auto at = std::ranges::find_if(
      docks, [&](const DockWindow& dock) { return dock.geometry.contains(point); });
  if (at == docks.end()) return std::nullopt;
  return at->geometry;
}

/// The middle of the end at which panels have their tray by default: the far one in reading
/// direction, or the lower one.
QPoint trayEnd(const QRect& panel) {
  const int half = std::min(panel.width(), panel.height()) / 2;
  if (panel.height() > panel.width()) return {panel.center().x(), panel.bottom() - half};
  const bool leftwards = QGuiApplication::isRightToLeft();
  return {leftwards ? panel.left() + half : panel.right() - half, panel.center().y()};
}

}  // namespace

void TrayAnchor::rememberPointer() {
  const QPoint point = QCursor::pos();
  click_ = Click{point, panelAt(point, dockWindows()).has_value()};
}

Anchor TrayAnchor::anchor() const {
  const std::vector<DockWindow> docks = dockWindows();
  if (const auto known = atLastClick(docks)) return *known;
  if (const auto known = atIcon(docks)) return *known;
  if (const auto guess = fromPanels(docks)) return *guess;
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  return {QGuiApplication::isRightToLeft() ? screen.topLeft() : screen.topRight(), std::nullopt};
}

std::optional<Anchor> TrayAnchor::atLastClick(const std::vector<DockWindow>& docks) const {
  if (!click_ || QGuiApplication::screenAt(click_->point) == nullptr) return std::nullopt;
  const auto panel = panelAt(click_->point, docks);
  if (click_->onPanel && !panel) return std::nullopt;  // the panel has moved since
  return Anchor{click_->point, panel};
}

std::optional<Anchor> TrayAnchor::atIcon(const std::vector<DockWindow>& docks) const {
  const QRect icon = iconGeometry_ ? iconGeometry_() : QRect();
  if (icon.isEmpty()) return std::nullopt;
  return Anchor{icon.center(), panelAt(icon.center(), docks)};
}

std::optional<Anchor> TrayAnchor::fromPanels(const std::vector<DockWindow>& docks) const {
  for (const DockWindow& dock : docks)
    if (const auto tray = hostPid_ == 0 ? std::nullopt : partDrawnBy(hostPid_, dock))
      return Anchor{tray->center(), dock.geometry};
  const auto isHost = [this](const DockWindow& dock) {
    return hostPid_ != 0 && dock.pid == hostPid_;
  };
  auto panel = std::ranges::find_if(docks, isHost);
  if (panel == docks.end()) panel = docks.begin();
  if (panel == docks.end()) return std::nullopt;
  return Anchor{trayEnd(panel->geometry), panel->geometry};
}

}  // namespace linux_desktop
