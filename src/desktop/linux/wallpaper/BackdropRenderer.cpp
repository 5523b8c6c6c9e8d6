#include "desktop/linux/wallpaper/BackdropRenderer.h"

#include <QLinearGradient>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>
#include <mutex>
#include <utility>

#include "desktop/linux/log/Log.h"
#include "desktop/linux/wallpaper/PictureReader.h"

namespace linux_desktop {
namespace {

QRect centered(const QSize& size, const QRect& area) {
  // Half of an odd difference is cut towards zero, also where the picture is the larger one.
  return {area.topLeft() +
              QPoint((area.width() - size.width()) / 2, (area.height() - size.height()) / 2),
          size};
}

double quotient(int wanted, int present, SizeRounding rounding) {
  if (rounding == SizeRounding::DownInFloat)
    return static_cast<double>(static_cast<float>(wanted) / static_cast<float>(present));
  return static_cast<double>(wanted) / present;
}

int rounded(double length, SizeRounding rounding) {
  // A factor that was made by dividing can miss the whole number by the last bits.
  constexpr double kLastBits = 1e-9;
  switch (rounding) {
    case SizeRounding::Down:
      return static_cast<int>(length + kLastBits);
    case SizeRounding::DownInFloat:
    case SizeRounding::DownInDouble:
    case SizeRounding::AsMutter:
      return static_cast<int>(length);
    case SizeRounding::Nearest:
      return static_cast<int>(std::lround(length));
    case SizeRounding::Up:
      return static_cast<int>(std::ceil(length - kLastBits));
  }
  return 0;
}

/// All in floats; what fills a side is as long as that, and each half is cut by itself.
QRect placedAsByMutter(const QSize& picture, const QRect& area, bool zooms) {
  const float across = static_cast<float>(area.width()) / static_cast<float>(picture.width());
  const float down = static_cast<float>(area.height()) / static_cast<float>(picture.height());
  QSize size = area.size();
  if (zooms ? across > down : across < down) {
    size.setHeight(static_cast<int>(static_cast<float>(picture.height()) * across));
  } else {
    size.setWidth(static_cast<int>(static_cast<float>(picture.width()) * down));
  }
  const QPoint offset(area.width() / 2 - size.width() / 2, area.height() / 2 - size.height() / 2);
  return {area.topLeft() + offset, size.expandedTo({1, 1})};
}

QSize scaled(const QSize& picture, double factor, SizeRounding rounding) {
  return {std::max(1, rounded(picture.width() * factor, rounding)),
          std::max(1, rounded(picture.height() * factor, rounding))};
}

}  // namespace

QRect placedPicture(const QSize& picture, const QRect& area, BackdropStyle style,
                    SizeRounding rounding) {
  if (picture.isEmpty() || area.isEmpty()) return {};
  const bool zooms = style == BackdropStyle::Zoomed;
  if (rounding == SizeRounding::AsMutter && (zooms || style == BackdropStyle::Fitted))
    return placedAsByMutter(picture, area, zooms);
  const double across = quotient(area.width(), picture.width(), rounding);
  const double down = quotient(area.height(), picture.height(), rounding);
  switch (style) {
    case BackdropStyle::None:
      return {};
    case BackdropStyle::Centered:
      return centered(picture, area);
    case BackdropStyle::Tiled:
      return {area.topLeft(), picture};
    case BackdropStyle::Stretched:
      return area;
    case BackdropStyle::Fitted:
      return centered(scaled(picture, std::min(across, down), rounding), area);
    case BackdropStyle::Zoomed:
      return centered(scaled(picture, std::max(across, down), rounding), area);
  }
  return {};
}

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
  const bool fits = backdrop.spansMonitors && backdrop.style == BackdropStyle::Zoomed &&
                    !layout.manner.spansByZooming;
  return fits ? BackdropStyle::Fitted : backdrop.style;
}

/// Over what is `seen` of `area`.
void drawTiles(QPainter& painter, const QImage& picture, const QRect& area, const QRect& seen,
               const BackdropLayout& layout) {
  const BackdropManner& manner = layout.manner;
  const QSize size = picture.size().boundedTo(layout.lastMonitor);
  QImage tile =
      manner.cutsTilesToLastMonitor ? picture.copy(centered(size, picture.rect())) : picture;
  const auto style = manner.centersTiles ? BackdropStyle::Centered : BackdropStyle::Tiled;
  QPointF origin = placedPicture(tile.size(), area, style, manner.rounding).topLeft();
  if (manner.stretchesTiles) {
    const QPointF apart = origin - seen.topLeft();
    origin = seen.topLeft() + QPointF(apart.x() * seen.width() / tile.width(),
                                      apart.y() * seen.height() / tile.height());
    tile = tile.scaled(seen.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  }
  QBrush brush(tile);
  brush.setTransform(QTransform::fromTranslate(origin.x(), origin.y()));
  painter.fillRect(seen, brush);
}

/// Larger ones are not made in full when only a part of them is in sight.
constexpr qint64 kLargestScaled = 64'000'000;  // pixels

/// Its half, or half of that, and so on, which is at most twice as large as `size`: what GL takes
/// with the bias of half a level that mutter gives it.
QImage halvedTowards(const QSize& size, QImage picture) {
  const qint64 width = picture.width();
  for (qint64 most = 2 * qint64{size.width()}; width > most; most *= 2) {
    const QSize half = QSize(picture.width() / 2, picture.height() / 2).expandedTo({1, 1});
    picture = picture.scaled(half, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  }
  return picture;
}

void drawScaled(QPainter& painter, const QImage& picture, const QRect& place, bool byGl) {
  const bool isSmall = qint64{place.width()} * place.height() <= kLargestScaled;
  if (picture.size() == place.size()) {
    painter.drawImage(place.topLeft(), picture);
  } else if (isSmall && !byGl) {
    painter.drawImage(place.topLeft(), picture.scaled(place.size(), Qt::IgnoreAspectRatio,
                                                      Qt::SmoothTransformation));
  } else {
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(place, byGl ? halvedTowards(place.size(), picture) : picture);
  }
}

/// Where a style has a picture, and how that is found from its size.
struct Placing {
  BackdropStyle style;
  QRect area;
  SizeRounding rounding;

  [[nodiscard]] QRect of(const QSize& size) const {
    return placedPicture(size, area, style, rounding);
  }
};

Placing placingOf(const Backdrop& backdrop, const Monitor& monitor, const BackdropLayout& layout) {
  const BackdropStyle style = styleOf(backdrop, layout);
  const bool onDesktop = backdrop.spansMonitors ||
                         (style == BackdropStyle::Tiled && layout.manner.tilesFromDesktopOrigin);
  return {style, onDesktop ? layout.desktop : monitor.pixels(), layout.manner.rounding};
}

/// Drawn at the size at which it is shown, and no more of it than is seen: it may declare any size.
/// Not left to QImageReader, whose plugin for drawings is a package of its own.
void drawDrawing(QPainter& painter, const QString& file, const Placing& placing,
                 const Monitor& monitor, const BackdropLayout& layout) {
  QSvgRenderer renderer(file);
  const QSize size = renderer.defaultSize();
  if (!renderer.isValid() || size.isEmpty()) return;
  const bool repeats =
      placing.style == BackdropStyle::Tiled &&
      (size.width() < placing.area.width() || size.height() < placing.area.height());
  if (!repeats || qint64{size.width()} * size.height() > kLargestScaled) {
    return renderer.render(&painter, placing.of(size));
  }
  QImage drawn(size, QImage::Format_ARGB32_Premultiplied);
  drawn.fill(Qt::transparent);
  QPainter onTile(&drawn);
  renderer.render(&onTile);
  onTile.end();
  drawTiles(painter, drawn, placing.area, monitor.pixels(), layout);
}

/// Once, as all monitors, and the mode each time, ask for the same picture.
void complain(const std::string& fault) {
  static std::mutex mutex;
  static std::string said;
  const std::scoped_lock lock(mutex);
  if (fault == std::exchange(said, fault)) return;
  qCWarning(lcWallpaper, "covers show a colour: %s", fault.c_str());
}

void drawPicture(QPainter& painter, const Backdrop& backdrop, const Monitor& monitor,
                 const BackdropLayout& layout) {
  const Placing placing = placingOf(backdrop, monitor, layout);
  if (placing.style == BackdropStyle::None || backdrop.file.isEmpty()) return;
  if (isDrawing(backdrop.file)) {
    return drawDrawing(painter, backdrop.file, placing, monitor, layout);
  }
  const bool atOwnSize =
      placing.style == BackdropStyle::Tiled || placing.style == BackdropStyle::Centered;
  const PictureReading reading{backdrop.file, layout.manner.turnsUpright,
                               atOwnSize ? QSize() : layout.desktop.size()};
  const DecodedPicture picture = readPicture(reading);
  if (picture.image.isNull()) {
    if (const auto fault = decodingFault(reading)) complain(*fault);
    return;
  }
  if (placing.style == BackdropStyle::Tiled) {
    drawTiles(painter, picture.image, placing.area, monitor.pixels(), layout);
  } else {
    drawScaled(painter, picture.image, placing.of(picture.size), layout.manner.scalesByGl);
  }
}

}  // namespace

QImage renderBackdrop(const Backdrop& backdrop, const Monitor& monitor,
                      const BackdropLayout& layout) {
  QImage image(monitor.pixels().size(), QImage::Format_RGB32);
  image.fill(Qt::black);
  QPainter painter(&image);
  painter.translate(-monitor.pixels().topLeft());
  const QRect shaded = backdrop.spansMonitors ? layout.desktop : monitor.pixels();
  painter.fillRect(monitor.pixels(), colours(backdrop, shaded));
  drawPicture(painter, backdrop, monitor, layout);
  return image;
}

}  // namespace linux_desktop
