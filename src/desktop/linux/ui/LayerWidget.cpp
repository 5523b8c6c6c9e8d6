#include "desktop/linux/ui/LayerWidget.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <cmath>
#include <utility>

#include "desktop/linux/ui/LayerPainter.h"
#include "desktop/linux/ui/Theme.h"

namespace linux_desktop {

using platform::NSAccessibilityRole;
using platform::NSView;
using platform::ViewChange;

LayerWidget::LayerWidget(std::shared_ptr<NSView> view, Clock clock, PressObserver& presses,
                         QWidget* parent)
    : WidgetOf(std::move(view), parent),
      clock_(std::move(clock)),
      presses_(presses),
      announcedState_(view_->accessibilityValue()) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  readFocusPolicy();
}

QSize LayerWidget::sizeHint() const {
  const double scale = view_->contentScale() * textScale();
  return QSize(static_cast<int>(std::ceil(view_->frame().width * scale)),
               static_cast<int>(std::ceil(view_->frame().height * scale))) +
         QSize(2 * kOverhang, 2 * kOverhang);
}

void LayerWidget::viewDidChange(ViewChange change) {
  if (includes(change, ViewChange::Frame)) updateGeometry();
  if (includes(change, ViewChange::Attributes)) readFocusPolicy();
  announceState();
  step();
  update();
}

bool LayerWidget::step() {
  const bool animating = view_->isAnimating(clock_());
  // Once more after the end: what was painted last was somewhere before it.
  if (animating || wasAnimating_) update();
  wasAnimating_ = animating;
  return animating;
}

void LayerWidget::readFocusPolicy() {
  setFocusPolicy(view_->acceptsFirstResponder() ? Qt::StrongFocus : Qt::NoFocus);
}

void LayerWidget::announceState() {
  const std::optional<bool> state = view_->accessibilityValue();
  if (std::exchange(announcedState_, state) == state) return;
  QAccessible::State changed;
  changed.checked = true;
  QAccessibleStateChangeEvent event(this, changed);
  QAccessible::updateAccessibility(&event);
}

// --- Painting ---

QRectF LayerWidget::viewRect() const {
  return QRectF(rect()).adjusted(kOverhang, kOverhang, -kOverhang, -kOverhang);
}

void LayerWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const Theme theme(palette());
  painter.save();
  const bool isMirrored = layoutDirection() == Qt::RightToLeft;
  painter.translate(isMirrored ? viewRect().bottomRight() : viewRect().bottomLeft());
  painter.scale(isMirrored ? -textScale() : textScale(), textScale());
  LayerPainter(painter, theme, clock_()).paint(*view_, QPointF());
  painter.restore();
  if (showsFocus_ && hasFocus()) paintFocusRing(painter);
}

void LayerWidget::paintFocusRing(QPainter& painter) const {
  constexpr double kWidth = 2;
  constexpr double kGap = 2;
  constexpr double kCorner = 4;
  const double out = kGap + kWidth / 2;
  const QRectF ring = viewRect().adjusted(-out, -out, out, out);
  const bool round = view_->accessibilityRole() == NSAccessibilityRole::Switch;
  const double radius = round ? ring.height() / 2 : kCorner;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(Theme(palette()).focusRing(), kWidth));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(ring, radius, radius);
}

// --- Presses ---

void LayerWidget::press(HeldBy by, QPointF at) {
  if (heldBy_ != HeldBy::Nothing) return;
  heldBy_ = by;
  presses_.pressed(*view_, at);
}

void LayerWidget::release(QPointF at) {
  if (std::exchange(heldBy_, HeldBy::Nothing) != HeldBy::Nothing) presses_.released(*view_, at);
}

void LayerWidget::click() {
  if (heldBy_ != HeldBy::Nothing) return;
  const QPointF middle = mapTo(window(), rect().center());
  press(HeldBy::Keyboard, middle);
  release(middle);
}

void LayerWidget::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) press(HeldBy::Pointer, mapTo(window(), event->pos()));
}

void LayerWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && heldBy_ == HeldBy::Pointer) {
    release(mapTo(window(), event->pos()));
  }
}

void LayerWidget::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Space || !view_->acceptsFirstResponder()) {
    event->ignore();
    return;
  }
  showsFocus_ = true;
  update();
  if (!event->isAutoRepeat()) press(HeldBy::Keyboard, mapTo(window(), rect().center()));
}

void LayerWidget::keyReleaseEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Space || event->isAutoRepeat() || heldBy_ != HeldBy::Keyboard) {
    event->ignore();
    return;
  }
  release(mapTo(window(), rect().center()));
}

void LayerWidget::focusInEvent(QFocusEvent* event) {
  // Who points at a control knows where it is. The ring stays as it was when the window comes back.
  if (event->reason() == Qt::MouseFocusReason) {
    showsFocus_ = false;
  } else if (event->reason() != Qt::ActiveWindowFocusReason) {
    showsFocus_ = true;
  }
  update();
}

void LayerWidget::focusOutEvent(QFocusEvent*) {
  if (heldBy_ == HeldBy::Keyboard) release(mapTo(window(), rect().center()));
  update();
}

void LayerWidget::hideEvent(QHideEvent*) {
  release(mapTo(window(), rect().center()));
}

}  // namespace linux_desktop
