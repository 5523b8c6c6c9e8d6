#include "desktop/linux/ui/PopoverPlacement.h"

#include <algorithm>
#include <array>

namespace linux_desktop {
namespace {

constexpr int kGap = 4;

struct EdgeDistance {
  Qt::Edge edge;
  int distance;
};

int far(const QRect& rect, Qt::Orientation orientation) {
  return orientation == Qt::Horizontal ? rect.x() + rect.width() : rect.y() + rect.height();
}

/// How far each side of `inner` is from the same side of `outer`.
std::array<EdgeDistance, 4> distances(const QRect& inner, const QRect& outer) {
  return {EdgeDistance{Qt::TopEdge, inner.y() - outer.y()},
          EdgeDistance{Qt::BottomEdge, far(outer, Qt::Vertical) - far(inner, Qt::Vertical)},
          EdgeDistance{Qt::LeftEdge, inner.x() - outer.x()},
          EdgeDistance{Qt::RightEdge, far(outer, Qt::Horizontal) - far(inner, Qt::Horizontal)}};
}

bool isAlong(Qt::Edge edge, Qt::Orientation orientation) {
  const bool horizontal = edge == Qt::TopEdge || edge == Qt::BottomEdge;
  return horizontal == (orientation == Qt::Horizontal);
}

/// The edge of `monitor` at which a bar lies: one along its long side, the nearer of the two.
Qt::Edge edgeOf(const QRect& bar, const QRect& monitor) {
  const auto orientation = bar.width() >= bar.height() ? Qt::Horizontal : Qt::Vertical;
  auto edges = distances(bar, monitor);
  const auto end = std::remove_if(edges.begin(), edges.end(), [orientation](const auto& row) {
    return !isAlong(row.edge, orientation);
  });
  return std::min_element(edges.begin(), end,
                          [](const auto& a, const auto& b) { return a.distance < b.distance; })
      ->edge;
}

Qt::Edge nearestEdge(QPoint point, const QRect& monitor) {
  const auto edges = distances(QRect(point, QSize(1, 1)), monitor);
  return std::ranges::min_element(edges, {}, &EdgeDistance::distance)->edge;
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

std::optional<QRect> panelAt(const Anchor& anchor, const std::vector<DesktopPanel>& panels) {
  if (anchor.panelGeometry) return anchor.panelGeometry;
  for (const DesktopPanel& panel : panels) {
    if (panel.geometry.contains(anchor.point)) return panel.geometry;
  }
  return std::nullopt;
}

/// `from`, moved into low..high-length; at `low` where it does not fit.
int fitted(int from, int length, int low, int high) {
  return std::max(low, std::min(from, high - length));
}

QPoint beside(Qt::Edge edge, QPoint anchor, QSize size, const QRect& room) {
  const int x = anchor.x() - size.width() / 2;
  const int y = anchor.y() - size.height() / 2;
  switch (edge) {
    case Qt::TopEdge:
      return {x, room.y()};
    case Qt::BottomEdge:
      return {x, far(room, Qt::Vertical) - size.height()};
    case Qt::LeftEdge:
      return {room.x(), y};
    case Qt::RightEdge:
      return {far(room, Qt::Horizontal) - size.width(), y};
  }
  return anchor;
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
  const std::optional<QRect> holder = panelAt(anchor, panels);
  const Qt::Edge edge = holder ? edgeOf(*holder, monitor) : nearestEdge(anchor.point, monitor);
  // A panel that reserves nothing is not covered either.
  if (holder) room = cut(room, *holder & monitor, edge);
  room.adjust(kGap, kGap, -kGap, -kGap);
  const QPoint wanted = beside(edge, anchor.point, size, room);
  return {QPoint(fitted(wanted.x(), size.width(), room.x(), far(room, Qt::Horizontal)),
                 fitted(wanted.y(), size.height(), room.y(), far(room, Qt::Vertical))),
          size};
}

}  // namespace linux_desktop
