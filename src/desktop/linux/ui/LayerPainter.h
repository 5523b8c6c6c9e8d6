#pragma once

#include <QPainter>

#include "desktop/linux/ui/Theme.h"
#include "platform/appkit/NSView.h"

namespace linux_desktop {

/// Paints the layers of a view and of all views in it as they are on the screen at one moment:
/// shadow, fill, what is inside, border. Crisp at any device pixel ratio.
class LayerPainter {
 public:
  /// `painter` paints on `theme`'s window colour and outlives this.
  LayerPainter(QPainter& painter, const Theme& theme, platform::MonotonicTime time)
      : painter_(painter), theme_(theme), time_(time) {}

  /// Paints `view` so that its lower left corner is at `lowerLeft`, in the painter's coordinates
  /// (y down), enlarged by the view's content scale. Shadows reach beyond the view's bounds.
  void paint(const platform::NSView& view, QPointF lowerLeft);

 private:
  void paintView(const platform::NSView& view, const platform::NSRect& frame);
  void paintLayer(const platform::NSView& view, const platform::CALayer::Presentation& look,
                  const QRectF& bounds);
  void paintShadow(const platform::NSShadow& shadow, const QRectF& bounds, double cornerRadius);
  void paintSubviews(const platform::NSView& view);
  [[nodiscard]] double pixelsPerPoint() const;

  QPainter& painter_;
  const Theme& theme_;
  platform::MonotonicTime time_;
};

}  // namespace linux_desktop
