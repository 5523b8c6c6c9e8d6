#include "desktop/linux/tray/TrayAnchor.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>

namespace linux_desktop {

std::optional<QRect> panelAt(QPoint point, const std::vector<DesktopPanel>& panels) {
  for (const DesktopPanel& panel : panels) {
    if (panel.geometry.contains(point)) return panel.geometry;
  }
  return std::nullopt;
}

namespace {

/// The middle of the end at which panels have their tray by default: the far one in reading
/// direction, or the lower one.
QPoint trayEnd(const QRect& panel) {
  const int half = std::min(panel.width(), panel.height()) / 2;
  if (panel.height() > panel.width()) return {panel.center().x(), panel.bottom() - half};
  const bool leftwards = QGuiApplication::isRightToLeft();
  return {leftwards ? panel.left() + half : panel.right() - half, panel.center().y()};
}

}  // namespace

void TrayAnchor::rememberClick(QPoint point) {
  click_ = Click{point, panelAt(point, windows_.panels()).has_value()};
}

void TrayAnchor::rememberTold(QPoint point) {
  const Panels panels = windows_.panels();
  const bool isNowhere = !panels.empty() && !panelAt(point, panels);
  if (isNowhere) return forgetClick();
  rememberClick(point);
}

Anchor TrayAnchor::anchor() const {
  const Panels now = windows_.panels();
  if (const auto known = atLastClick(now)) return *known;
  if (const auto known = atIcon(now)) return *known;
  if (const auto guess = fromPanels(now)) return *guess;
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  return {QGuiApplication::isRightToLeft() ? screen.topLeft() : screen.topRight(), std::nullopt};
}

std::optional<Anchor> TrayAnchor::atLastClick(const Panels& panels) const {
  if (!click_ || QGuiApplication::screenAt(click_->point) == nullptr) return std::nullopt;
  const auto panel = panelAt(click_->point, panels);
  if (click_->onPanel && !panel) return std::nullopt;  // the panel has moved since
  return Anchor{click_->point, panel};
}

std::optional<Anchor> TrayAnchor::atIcon(const Panels& panels) const {
  const QRect icon = iconGeometry_ ? iconGeometry_() : QRect();
  if (icon.isEmpty()) return std::nullopt;
  return Anchor{icon.center(), panelAt(icon.center(), panels)};
}

std::optional<Anchor> TrayAnchor::fromPanels(const Panels& panels) const {
  if (const auto tray = hostPid_ == 0 ? std::nullopt : windows_.partDrawnBy(hostPid_)) {
    return Anchor{tray->part.center(), tray->panel};
  }
  const auto isHost = [this](const DesktopPanel& panel) {
    return hostPid_ != 0 && panel.pid == hostPid_;
  };
  auto panel = std::ranges::find_if(panels, isHost);
  if (panel == panels.end()) panel = panels.begin();
  if (panel == panels.end()) return std::nullopt;
  return Anchor{trayEnd(panel->geometry), panel->geometry};
}

}  // namespace linux_desktop
