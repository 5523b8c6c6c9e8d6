#include "desktop/linux/ui/SoftShadow.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <list>
#include <tuple>
#include <utility>
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

enum class Direction { Across, Down };

/// One direction of the blur, on alpha alone; what lies outside the image is clear.
QImage blurredAlong(const QImage& source, const std::vector<double>& kernel, Direction direction) {
  const int reach = static_cast<int>(kernel.size()) / 2;
  const double* const middle = kernel.data() + reach;
  const bool across = direction == Direction::Across;
  const int length = across ? source.width() : source.height();
  const qsizetype step = across ? 1 : source.bytesPerLine();
  QImage result(source.size(), QImage::Format_Alpha8);
  for (int y = 0; y < source.height(); ++y) {
    const uchar* pixel = source.constScanLine(y);
    uchar* line = result.scanLine(y);
    for (int x = 0; x < source.width(); ++x, ++pixel) {
      const int place = across ? x : y;
      const int from = std::max(-reach, -place);
      const int to = std::min(reach, length - 1 - place);
      double sum = 0;
      for (int at = from; at <= to; ++at) sum += middle[at] * pixel[at * step];
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

SoftShadow blurred(QSizeF size, double cornerRadius, double deviation, const QColor& color) {
  const int reach = static_cast<int>(std::ceil(3 * deviation)) + 1;
  QImage mask = shape(size, cornerRadius, reach);
  if (deviation > 0) {
    const std::vector<double> kernel = gaussian(deviation, reach);
    mask = blurredAlong(blurredAlong(mask, kernel, Direction::Across), kernel, Direction::Down);
  }
  return {coloured(mask, color), reach};
}

/// All that a shadow depends on.
using Key = std::tuple<double, double, double, double, QRgb>;

/// The shadows drawn last. While a switch slides, each frame draws the same few.
class RecentShadows {
 public:
  static constexpr std::size_t kMost = 16;

  [[nodiscard]] const SoftShadow* find(const Key& key) {
    const auto found = std::ranges::find(shadows_, key, &Entry::first);
    if (found == shadows_.end()) return nullptr;
    shadows_.splice(shadows_.begin(), shadows_, found);
    return &shadows_.front().second;
  }
  const SoftShadow& add(const Key& key, SoftShadow shadow) {
    if (shadows_.size() == kMost) shadows_.pop_back();
    return shadows_.emplace_front(key, std::move(shadow)).second;
  }

 private:
  using Entry = std::pair<Key, SoftShadow>;
  std::list<Entry> shadows_;  // the last one first
};

}  // namespace

SoftShadow softShadow(QSizeF size, double cornerRadius, double deviation, const QColor& color) {
  static RecentShadows recent;
  const Key key{size.width(), size.height(), cornerRadius, deviation, color.rgba()};
  if (const SoftShadow* known = recent.find(key)) return *known;
  return recent.add(key, blurred(size, cornerRadius, deviation, color));
}

}  // namespace linux_desktop
