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

/// How far it is to go there, along and across.
int distanceTo(const QRect& panel, QPoint from) {
  const int across = std::max({panel.left() - from.x(), 0, from.x() - panel.right()});
  const int down = std::max({panel.top() - from.y(), 0, from.y() - panel.bottom()});
  return across + down;
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
  if (const auto place = known(now)) return *place;
  const auto distance = [this](const DesktopPanel& panel) {
    return pointer_ ? distanceTo(panel.geometry, *pointer_) : 0;
  };
  const auto panel = std::ranges::min_element(now, {}, distance);
  if (panel != now.end()) return {trayEnd(panel->geometry), panel->geometry};
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  return {QGuiApplication::isRightToLeft() ? screen.topLeft() : screen.topRight(), std::nullopt};
}

bool TrayAnchor::isGuess() const {
  const Panels now = windows_.panels();
  const auto isKnown = [](const DesktopPanel& panel) { return panel.pid != 0; };
  return now.size() > 1 && !known(now) && std::ranges::none_of(now, isKnown);
}

std::optional<Anchor> TrayAnchor::known(const Panels& panels) const {
  if (const auto place = atLastClick(panels)) return place;
  if (const auto place = atIcon(panels)) return place;
  return atHost(panels);
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

std::optional<Anchor> TrayAnchor::atHost(const Panels& panels) const {
  if (hostPid_ == 0) return std::nullopt;
  if (const auto tray = windows_.partDrawnBy(hostPid_))
    return Anchor{tray->part.center(), tray->panel};
  const auto panel = std::ranges::find(panels, hostPid_, &DesktopPanel::pid);
  if (panel == panels.end()) return std::nullopt;
  return Anchor{trayEnd(panel->geometry), panel->geometry};
}

}  // namespace linux_desktop
