#include "desktop/linux/wallpaper/BackdropRenderer.h"

#include <QLinearGradient>
#include <QPainter>

#include "desktop/linux/wallpaper/BackdropGeometry.h"
#include "desktop/linux/wallpaper/BackdropPicture.h"

namespace linux_desktop {
namespace {

QBrush colours(const Backdrop& backdrop, const QRect& area) {
  if (backdrop.shading == BackdropShading::Solid) return backdrop.primary;
  const bool across = backdrop.shading == BackdropShading::Horizontal;
  QLinearGradient gradient(area.topLeft(), area.topLeft() + (across ? QPoint(area.width(), 0)
                                                                    : QPoint(0, area.height())));
  gradient.setColorAt(0, backdrop.primary);
  gradient.setColorAt(1, backdrop.secondary);
  return gradient;
}

BackdropStyle styleOf(const Backdrop& backdrop, const BackdropLayout& layout) {
  const bool fits =
      backdrop.spansMonitors && backdrop.style == BackdropStyle::Zoomed && !layout.spansByZooming;
  return fits ? BackdropStyle::Fitted : backdrop.style;
}

QImage tileOf(const QImage& picture, const BackdropLayout& layout) {
  if (!layout.manner.cutsTilesToLastMonitor) return picture;
  const QSize size = picture.size().boundedTo(layout.lastMonitor);
  return picture.copy((picture.width() - size.width()) / 2, (picture.height() - size.height()) / 2,
                      size.width(), size.height());
}

QPoint firstTile(const QSize& tile, const QRect& area, const BackdropLayout& layout) {
  const auto style = layout.manner.centersTiles ? BackdropStyle::Centered : BackdropStyle::Tiled;
  return placedPicture(tile, area, style, layout.manner.rounding).topLeft();
}

void drawTiles(QPainter& painter, const QImage& tile, const QPoint& origin, const QRect& area) {
  QBrush brush(tile);
  brush.setTransform(QTransform::fromTranslate(origin.x(), origin.y()));
  painter.fillRect(area, brush);
}

/// Larger ones are not made in full when only a part of them is in sight.
constexpr qint64 kLargestScaled = 64'000'000;  // pixels

void drawScaled(QPainter& painter, const QImage& picture, const QRect& place) {
  if (picture.size() == place.size()) {
    painter.drawImage(place.topLeft(), picture);
  } else if (qint64{place.width()} * place.height() <= kLargestScaled) {
    painter.drawImage(place.topLeft(), picture.scaled(place.size(), Qt::IgnoreAspectRatio,
                                                      Qt::SmoothTransformation));
  } else {
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(place, picture);
  }
}

void drawPicture(QPainter& painter, const Backdrop& backdrop, const Monitor& monitor,
                 const BackdropLayout& layout) {
  const BackdropStyle style = styleOf(backdrop, layout);
  if (style == BackdropStyle::None || backdrop.file.isEmpty()) return;
  const bool onDesktop =
      backdrop.spansMonitors || (style == BackdropStyle::Tiled && layout.tilesFromDesktopOrigin);
  const QRect area = onDesktop ? layout.desktop : monitor.pixels;
  const auto placeOf = [&](const QSize& size) {
    return placedPicture(size, area, style, layout.manner.rounding);
  };
  QSize original;
  const QImage picture =
      readPicture(backdrop.file, {layout.manner.turnsUpright, layout.manner.decodesAtSize},
                  [&](const QSize& size) { return placeOf(original = size).size(); });
  if (picture.isNull()) return;
  const QRect place = placeOf(original.isEmpty() ? picture.size() : original);
  if (style == BackdropStyle::Tiled) {
    const QImage tile = tileOf(picture, layout);
    drawTiles(painter, tile, firstTile(tile.size(), area, layout), monitor.pixels);
  } else {
    drawScaled(painter, picture, place);
  }
}

}  // namespace

QImage renderBackdrop(const Backdrop& backdrop, const Monitor& monitor,
                      const BackdropLayout& layout) {
  QImage image(monitor.pixels.size(), QImage::Format_RGB32);
  image.fill(Qt::black);
  QPainter painter(&image);
  painter.translate(-monitor.pixels.topLeft());
  const bool whole = backdrop.spansMonitors || layout.manner.shadesWholeDesktop;
  painter.fillRect(monitor.pixels, colours(backdrop, whole ? layout.desktop : monitor.pixels));
  drawPicture(painter, backdrop, monitor, layout);
  return image;
}

}  // namespace linux_desktop
