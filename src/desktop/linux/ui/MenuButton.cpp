#include "desktop/linux/ui/MenuButton.h"

#include <QStyleOptionToolButton>
#include <QStylePainter>

#include "desktop/linux/ui/Theme.h"

namespace linux_desktop {

MenuButton::MenuButton(QWidget* parent) : QToolButton(parent) {
  setAutoRaise(true);
  setFocusPolicy(Qt::StrongFocus);
  setToolTip(QStringLiteral("Menu"));
  setAccessibleName(QStringLiteral("Menu"));
}

void MenuButton::paintEvent(QPaintEvent*) {
  constexpr double kLine = 1.5;
  constexpr double kDistance = 4.5;
  constexpr double kHalfWidth = 6.5;
  QStylePainter painter(this);
  QStyleOptionToolButton option;
  initStyleOption(&option);
  painter.drawComplexControl(QStyle::CC_ToolButton, option);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(palette().color(QPalette::WindowText), kLine, Qt::SolidLine, Qt::RoundCap));
  const QPointF middle = QRectF(rect()).center();
  for (const int row : {-1, 0, 1}) {
    const QPointF at = middle + QPointF(0, row * kDistance);
    painter.drawLine(at - QPointF(kHalfWidth, 0), at + QPointF(kHalfWidth, 0));
  }
  if (hasFocus()) {
    painter.setPen(QPen(Theme(palette()).focusRing(), 2));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
  }
}

}  // namespace linux_desktop
