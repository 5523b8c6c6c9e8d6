#include "desktop/linux/ui/SoftShadow.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>
#include <vector>

namespace linux_desktop {
namespace {

std::vector<double> gaussian(double deviation, int reach) {
  std::vector<double> kernel;
  double sum = 0;
  for (int at = -reach; at <= reach; ++at) {
    kernel.push_back(std::exp(-at * at / (2 * deviation * deviation)));
    sum += kernel.back();
  }
  for (double& weight : kernel) weight /= sum;
  return kernel;
}

/// One direction of the blur, on alpha alone; what lies outside the image is clear.
QImage blurredAlong(const QImage& source, const std::vector<double>& kernel, int stepX, int stepY) {
  const int reach = static_cast<int>(kernel.size()) / 2;
  QImage result(source.size(), QImage::Format_Alpha8);
  for (int y = 0; y < source.height(); ++y) {
    uchar* line = result.scanLine(y);
    for (int x = 0; x < source.width(); ++x) {
      double sum = 0;
      for (int at = -reach; at <= reach; ++at) {
        const QPoint from(x + at * stepX, y + at * stepY);
        if (!source.rect().contains(from)) continue;
        sum +=
            kernel[static_cast<std::size_t>(at + reach)] * source.constScanLine(from.y())[from.x()];
      }
      line[x] = static_cast<uchar>(std::lround(sum));
    }
  }
  return result;
}

QImage shape(QSizeF size, double cornerRadius, int reach) {
  const int room = 2 * reach + 1;
  QImage mask(static_cast<int>(std::ceil(size.width())) + room,
              static_cast<int>(std::ceil(size.height())) + room, QImage::Format_Alpha8);
  mask.fill(0);
  QPainter painter(&mask);
  painter.setRenderHint(QPainter::Antialiasing);
  QPainterPath path;
  path.addRoundedRect(QRectF(QPointF(reach, reach), size), cornerRadius, cornerRadius);
  painter.fillPath(path, Qt::black);
  return mask;
}

QImage coloured(const QImage& mask, const QColor& color) {
  QImage image(mask.size(), QImage::Format_ARGB32_Premultiplied);
  image.fill(color);
  QPainter painter(&image);
  painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
  painter.drawImage(0, 0, mask);
  return image;
}

}  // namespace

SoftShadow softShadow(QSizeF size, double cornerRadius, double deviation, const QColor& color) {
  const int reach = static_cast<int>(std::ceil(3 * deviation)) + 1;
  QImage mask = shape(size, cornerRadius, reach);
  if (deviation > 0) {
    const std::vector<double> kernel = gaussian(deviation, reach);
    mask = blurredAlong(blurredAlong(mask, kernel, 1, 0), kernel, 0, 1);
  }
  return {coloured(mask, color), reach};
}

}  // namespace linux_desktop
