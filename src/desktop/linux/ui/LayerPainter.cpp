#include "desktop/linux/ui/LayerPainter.h"

#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "desktop/linux/ui/SoftShadow.h"

namespace linux_desktop {

using platform::CALayer;
using platform::NSRect;
using platform::NSShadow;
using platform::NSView;

namespace {

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
  if (const platform::CALayer* layer = view.layer()) {
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
