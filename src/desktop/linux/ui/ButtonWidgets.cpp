#include "desktop/linux/ui/ButtonWidgets.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QProxyStyle>
#include <QStyleOptionToolButton>
#include <QStylePainter>
#include <cmath>
#include <utility>

#include "desktop/linux/language/Language.h"
#include "desktop/linux/ui/Theme.h"

namespace linux_desktop {
namespace {

// Of the menu's button.
constexpr int kMargin = 7;
constexpr int kSymbolWidth = 12;
constexpr int kGap = 7;

bool isReturn(int key) {
  return key == Qt::Key_Return || key == Qt::Key_Enter;
}

bool isSpace(int key) {
  return key == Qt::Key_Space || key == Qt::Key_Select;
}

/// The desktop's own style, in which what is ticked grows with the text.
class GrowingStyle final : public QProxyStyle {
 public:
  [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option,
                                const QWidget* widget) const override {
    const int usual = QProxyStyle::pixelMetric(metric, option, widget);
    const bool grows = metric == PM_IndicatorWidth || metric == PM_IndicatorHeight;
    return grows ? static_cast<int>(std::lround(usual * textScale())) : usual;
  }
};

QStyle* growingStyle() {
  static QPointer<QStyle> style;
  if (!style) {
    style = new GrowingStyle;
    style->setParent(QApplication::instance());
  }
  return style;
}

/// What is pressed may take the widget away; Qt keeps the lambda until it returns.
void reportClicks(QAbstractButton& widget, std::shared_ptr<platform::NSButton> button,
                  PressObserver& presses) {
  QObject::connect(&widget, &QAbstractButton::clicked, &widget,
                   [&widget, button = std::move(button), &presses] {
                     const QPointF middle = widget.mapTo(widget.window(), widget.rect().center());
                     presses.pressed(*button, middle);
                     presses.released(*button, middle);
                   });
}

}  // namespace

ButtonWidget::ButtonWidget(std::shared_ptr<platform::NSButton> button, PressObserver& presses,
                           QWidget* parent)
    : WidgetOf(std::move(button), parent) {
  setAutoDefault(false);
  QSizePolicy policy(QSizePolicy::Fixed, QSizePolicy::Fixed, QSizePolicy::PushButton);
  policy.setRetainSizeWhenHidden(true);
  setSizePolicy(policy);
  reportClicks(*this, view_, presses);
  viewDidChange(platform::ViewChange::Content);
}

void ButtonWidget::viewDidChange(platform::ViewChange) {
  setText(plainTitle(view_->title()));
}

bool ButtonWidget::actsOn(int key) const {
  return isSpace(key) || isReturn(key);
}

void ButtonWidget::keyPressEvent(QKeyEvent* event) {
  if (!isReturn(event->key())) {
    QPushButton::keyPressEvent(event);
  } else if (!event->isAutoRepeat()) {
    click();
  }
}

CheckboxWidget::CheckboxWidget(std::shared_ptr<platform::NSButton> button, PressObserver& presses,
                               QWidget* parent)
    : WidgetOf(std::move(button), parent) {
  setStyle(growingStyle());
  reportClicks(*this, view_, presses);
  viewDidChange(platform::ViewChange::Content);
}

void CheckboxWidget::viewDidChange(platform::ViewChange) {
  setText(plainTitle(view_->title()));
  setChecked(view_->state() == platform::NSControlStateValue::On);
}

bool CheckboxWidget::actsOn(int key) const {
  return isSpace(key);
}

MenuButton::MenuButton(QWidget* parent) : QToolButton(parent) {
  setAutoRaise(true);
  setFocusPolicy(Qt::TabFocus);
  setText(localized("Menu"));
  setAccessibleName(text());
  setShortcut(Qt::Key_F10);
}

QSize MenuButton::sizeHint() const {
  const int width = fontMetrics().horizontalAdvance(text());
  return {2 * kMargin + kSymbolWidth + kGap + width, fontMetrics().height() + kMargin};
}

void MenuButton::keyPressEvent(QKeyEvent* event) {
  if (isReturn(event->key()) || event->key() == Qt::Key_Down) {
    click();
  } else {
    QToolButton::keyPressEvent(event);
  }
}

void MenuButton::paintEvent(QPaintEvent*) {
  constexpr double kLine = 1.5;
  constexpr double kDistance = 4;
  QStylePainter painter(this);
  QStyleOptionToolButton option;
  initStyleOption(&option);
  option.text.clear();
  painter.drawComplexControl(QStyle::CC_ToolButton, option);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(palette().color(QPalette::WindowText), kLine, Qt::SolidLine, Qt::RoundCap));
  const QRect inside = rect().adjusted(kMargin, 0, -kMargin, 0);
  const QRect symbol = QStyle::alignedRect(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter,
                                           {kSymbolWidth, height()}, inside);
  for (const int row : {-1, 0, 1}) {
    const double y = QRectF(symbol).center().y() + row * kDistance;
    painter.drawLine(QPointF(symbol.left(), y), QPointF(symbol.right() + 1, y));
  }
  painter.drawText(inside, static_cast<int>(Qt::AlignRight | Qt::AlignVCenter), text());
  if (hasFocus()) {
    painter.setPen(QPen(Theme(palette()).focusRing(), 2));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
  }
}

}  // namespace linux_desktop
