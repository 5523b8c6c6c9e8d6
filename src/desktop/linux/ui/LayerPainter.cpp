#include "desktop/linux/ui/LayerPainter.h"

#include <QCache>
#include <QImage>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace linux_desktop {

using platform::CALayer;
using platform::NSRect;
using platform::NSShadow;
using platform::NSView;

namespace {

// --- Shapes ---

QPainterPath rounded(const QRectF& rect, double radius) {
  QPainterPath path;
  const double fitting = std::clamp(radius, 0.0, std::min(rect.width(), rect.height()) / 2);
  if (!rect.isEmpty()) path.addRoundedRect(rect, fitting, fitting);
  return path;
}

QRectF inset(const QRectF& rect, double by) {
  return rect.adjusted(by, by, -by, -by);
}

/// The ring between the edge and `width` inside it; all of the shape where the ring closes.
QPainterPath border(const QRectF& bounds, double radius, double width) {
  QPainterPath path = rounded(bounds, radius);
  path.addPath(rounded(inset(bounds, width), radius - width));
  path.setFillRule(Qt::OddEvenFill);
  return path;
}

// --- Shadows ---

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

/// Blurred from left to right, on alpha alone, and with its rows for columns; what lies outside the
/// image is clear.
QImage blurredAndTurned(const QImage& source, const std::vector<double>& kernel) {
  const int reach = static_cast<int>(kernel.size()) / 2;
  const double* const middle = kernel.data() + reach;
  QImage result(source.size().transposed(), QImage::Format_Alpha8);
  uchar* const pixels = result.bits();
  for (int y = 0; y < source.height(); ++y) {
    const uchar* pixel = source.constScanLine(y);
    for (int x = 0; x < source.width(); ++x, ++pixel) {
      const int to = std::min(reach, source.width() - 1 - x);
      double sum = 0;
      for (int at = std::max(-reach, -x); at <= to; ++at) sum += middle[at] * pixel[at];
      pixels[x * result.bytesPerLine() + y] = static_cast<uchar>(std::lround(sum));
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
  painter.fillPath(rounded(QRectF(QPointF(reach, reach), size), cornerRadius), Qt::black);
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

/// The blurred picture of a rounded rectangle, and how far it reaches beyond it. In pixels.
struct SoftShadow {
  QImage image;
  int reach = 0;
};

/// Blurred by a Gaussian with that standard deviation; the rectangle's corner is at (reach, reach).
SoftShadow blurred(QSizeF size, double cornerRadius, double deviation, const QColor& color) {
  const int reach = static_cast<int>(std::ceil(3 * deviation)) + 1;
  QImage mask = shape(size, cornerRadius, reach);
  if (deviation > 0) {
    const std::vector<double> kernel = gaussian(deviation, reach);
    mask = blurredAndTurned(blurredAndTurned(mask, kernel), kernel);
  }
  return {coloured(mask, color), reach};
}

/// All that a shadow depends on.
struct ShadowKey {
  double width, height, cornerRadius, deviation;
  QRgb color;
  bool operator==(const ShadowKey&) const = default;
  friend std::size_t qHash(const ShadowKey& key, std::size_t seed) {
    return qHashMulti(seed, key.width, key.height, key.cornerRadius, key.deviation, key.color);
  }
};

/// The last few are kept: while a switch slides, each frame draws the same ones.
SoftShadow softShadow(QSizeF size, double cornerRadius, double deviation, const QColor& color) {
  static QCache<ShadowKey, SoftShadow> recent(16);
  const ShadowKey key{size.width(), size.height(), cornerRadius, deviation, color.rgba()};
  if (const SoftShadow* known = recent.object(key)) return *known;
  SoftShadow drawn = blurred(size, cornerRadius, deviation, color);
  recent.insert(key, std::make_unique<SoftShadow>(drawn).release());
  return drawn;
}

// --- Painting ---

class SavedState {
 public:
  explicit SavedState(QPainter& painter) : painter_(painter) { painter_.save(); }
  ~SavedState() { painter_.restore(); }
  SavedState(const SavedState&) = delete;
  SavedState& operator=(const SavedState&) = delete;

 private:
  QPainter& painter_;
};

}  // namespace

void LayerPainter::paint(const NSView& view, QPointF lowerLeft) {
  const SavedState state(painter_);
  painter_.setRenderHint(QPainter::Antialiasing);
  painter_.setRenderHint(QPainter::SmoothPixmapTransform);
  painter_.translate(lowerLeft);
  painter_.scale(1, -1);
  NSRect frame = view.presentationFrame(time_);
  frame.x = 0;
  frame.y = 0;
  paintView(view, frame);
}

void LayerPainter::paintView(const NSView& view, const NSRect& frame) {
  if (view.isHidden()) return;
  const SavedState state(painter_);
  painter_.translate(frame.x, frame.y);
  painter_.scale(view.contentScale(), view.contentScale());
  const QRectF bounds(0, 0, frame.width, frame.height);
  if (const CALayer* layer = view.layer()) {
    paintLayer(view, layer->presentation(time_), bounds);
  } else {
    paintSubviews(view);
  }
}

void LayerPainter::paintLayer(const NSView& view, const CALayer::Presentation& look,
                              const QRectF& bounds) {
  if (view.shadow()) paintShadow(*view.shadow(), bounds, look.cornerRadius);
  const QColor borderColor = theme_.color(look.borderColor);
  const bool covered = look.borderWidth > 0 && borderColor.alpha() == 255;
  // Under an opaque border the fill stops a pixel short of the edge: two antialiased edges on one
  // another would let the fill shine through as a fringe. It reaches under the border's inner edge.
  const double pixel = 1 / pixelsPerPoint();
  const double gap = covered ? std::clamp(look.borderWidth - pixel / 2, 0.0, pixel) : 0;
  painter_.fillPath(rounded(inset(bounds, gap), look.cornerRadius - gap),
                    theme_.color(look.backgroundColor));
  {
    const SavedState state(painter_);
    if (view.layer()->masksToBounds()) {
      painter_.setClipPath(rounded(bounds, look.cornerRadius), Qt::IntersectClip);
    }
    paintSubviews(view);
  }
  if (look.borderWidth > 0) {
    painter_.fillPath(border(bounds, look.cornerRadius, look.borderWidth), borderColor);
  }
}

void LayerPainter::paintSubviews(const NSView& view) {
  for (const auto& subview : view.subviews()) {
    paintView(*subview, subview->presentationFrame(time_));
  }
}

void LayerPainter::paintShadow(const NSShadow& shadow, const QRectF& bounds, double cornerRadius) {
  const double scale = pixelsPerPoint();
  // A blur radius is two standard deviations.
  const SoftShadow soft =
      softShadow(bounds.size() * scale, std::min(cornerRadius, bounds.height() / 2) * scale,
                 shadow.shadowBlurRadius() / 2 * scale, theme_.color(shadow.shadowColor()));
  const double reach = soft.reach / scale;
  const QPointF offset(shadow.shadowOffset().width, shadow.shadowOffset().height);
  const SavedState state(painter_);
  // The image begins at its upper left.
  painter_.translate(QPointF(-reach, bounds.height() + reach) + offset);
  painter_.scale(1, -1);
  painter_.drawImage(QRectF(QPointF(), QSizeF(soft.image.size()) / scale), soft.image);
}

double LayerPainter::pixelsPerPoint() const {
  const QTransform& transform = painter_.deviceTransform();
  return std::hypot(transform.m11(), transform.m12());
}

}  // namespace linux_desktop
