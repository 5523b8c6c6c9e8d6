#include "desktop/linux/ui/BoxWidget.h"

#include <QAccessible>
#include <QPainter>
#include <utility>

#include "desktop/linux/ui/Theme.h"

namespace linux_desktop {
namespace {

constexpr double kCornerRadius = 5;
constexpr double kThin = 1;
constexpr double kStrong = 2;
constexpr double kTint = 0.12;
constexpr int kMarginX = 10;
constexpr int kMarginY = 5;
/// The field is at least this wide in letters, so that it does not change with what it holds.
constexpr int kLeastLetters = 24;

}  // namespace

BoxWidget::BoxWidget(std::shared_ptr<platform::NSBox> box, QWidget* parent)
    : QWidget(parent), box_(std::move(box)) {
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  inside_.setContentsMargins(kMarginX, kMarginY, kMarginX, kMarginY);
  themeDidChange();
}

void BoxWidget::viewDidChange(platform::ViewChange) {
  update();
  QAccessible::State changed;
  changed.selected = true;
  QAccessibleStateChangeEvent event(this, changed);
  QAccessible::updateAccessibility(&event);
}

void BoxWidget::themeDidChange() {
  setMinimumWidth(2 * kMarginX + kLeastLetters * fontMetrics().averageCharWidth());
  update();
}

void BoxWidget::paintEvent(QPaintEvent*) {
  const Theme theme(palette());
  const QColor color =
      isMarked() ? theme.mark(box_->borderColor()) : theme.color(box_->borderColor());
  const double width = isMarked() ? kStrong : kThin;
  QColor tint = color;
  tint.setAlphaF(isMarked() ? static_cast<float>(kTint) : 0);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF frame = QRectF(rect()).adjusted(width / 2, width / 2, -width / 2, -width / 2);
  painter.setPen(QPen(color, width));
  painter.setBrush(palette().brush(QPalette::Active, QPalette::Base));
  painter.drawRoundedRect(frame, kCornerRadius, kCornerRadius);
  painter.setBrush(tint);
  painter.drawRoundedRect(frame, kCornerRadius, kCornerRadius);
}

}  // namespace linux_desktop
