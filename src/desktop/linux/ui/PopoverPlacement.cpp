#include "desktop/linux/ui/PopoverPlacement.h"

#include <QMargins>
#include <algorithm>

#include "desktop/linux/tray/TrayAnchor.h"

namespace linux_desktop {
namespace {

constexpr int kGap = 4;

/// How far each side of `inner` is from the same side of `outer`.
QMargins distances(const QRect& inner, const QRect& outer) {
  return {inner.left() - outer.left(), inner.top() - outer.top(), outer.right() - inner.right(),
          outer.bottom() - inner.bottom()};
}

/// Of the two edges that lie that way, the one that is not so far.
Qt::Edge nearer(const QMargins& away, Qt::Orientation lying) {
  if (lying == Qt::Vertical) return away.left() <= away.right() ? Qt::LeftEdge : Qt::RightEdge;
  return away.top() <= away.bottom() ? Qt::TopEdge : Qt::BottomEdge;
}

/// The edge of `monitor` at which a bar lies: one along its long side, the nearer of the two.
Qt::Edge edgeOf(const QRect& bar, const QRect& monitor) {
  const bool isWide = bar.width() >= bar.height();
  return nearer(distances(bar, monitor), isWide ? Qt::Horizontal : Qt::Vertical);
}

Qt::Edge nearestEdge(QPoint point, const QRect& monitor) {
  const QMargins away = distances(QRect(point, QSize(1, 1)), monitor);
  const bool isBeside = std::min(away.left(), away.right()) < std::min(away.top(), away.bottom());
  return nearer(away, isBeside ? Qt::Vertical : Qt::Horizontal);
}

/// `area` without what of it lies between `edge` and the inner side of `bar`.
QRect cut(QRect area, const QRect& bar, Qt::Edge edge) {
  switch (edge) {
    case Qt::TopEdge:
      area.setTop(std::max(area.top(), bar.bottom() + 1));
      break;
    case Qt::BottomEdge:
      area.setBottom(std::min(area.bottom(), bar.top() - 1));
      break;
    case Qt::LeftEdge:
      area.setLeft(std::max(area.left(), bar.right() + 1));
      break;
    case Qt::RightEdge:
      area.setRight(std::min(area.right(), bar.left() - 1));
      break;
  }
  return area;
}

/// At that edge of `room`, centred at `anchor` as far as it fits in.
QRect beside(Qt::Edge edge, QPoint anchor, QSize size, const QRect& room) {
  QRect place(anchor - QPoint(size.width() / 2, size.height() / 2), size);
  if (edge == Qt::TopEdge) place.moveTop(room.top());
  if (edge == Qt::LeftEdge) place.moveLeft(room.left());
  if (edge == Qt::RightEdge) place.moveRight(room.right());
  if (edge == Qt::BottomEdge) place.moveBottom(room.bottom());
  place.moveRight(std::min(place.right(), room.right()));
  place.moveBottom(std::min(place.bottom(), room.bottom()));
  place.moveLeft(std::max(place.left(), room.left()));
  place.moveTop(std::max(place.top(), room.top()));
  return place;
}

}  // namespace

QRect usableArea(const QRect& monitor, const std::vector<DesktopPanel>& panels) {
  QRect area = monitor;
  for (const DesktopPanel& panel : panels) {
    if (panel.reserved.isEmpty() || !monitor.contains(panel.geometry.center())) continue;
    const QRect bar = panel.reserved & monitor;
    area = cut(area, bar, edgeOf(bar, monitor));
  }
  return area;
}

QRect placePopover(const Anchor& anchor, QSize size, const QRect& monitor,
                   const std::vector<DesktopPanel>& panels) {
  QRect room = usableArea(monitor, panels);
  const std::optional<QRect> holder =
      anchor.panelGeometry ? anchor.panelGeometry : panelAt(anchor.point, panels);
  const Qt::Edge edge = holder ? edgeOf(*holder, monitor) : nearestEdge(anchor.point, monitor);
  // A panel that reserves nothing is not covered either.
  if (holder) room = cut(room, *holder & monitor, edge);
  return beside(edge, anchor.point, size, room.adjusted(kGap, kGap, -kGap, -kGap));
}

}  // namespace linux_desktop
