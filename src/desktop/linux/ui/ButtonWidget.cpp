#include "desktop/linux/ui/ButtonWidget.h"

#include <QKeyEvent>
#include <utility>

#include "desktop/linux/ui/PlainTitle.h"

namespace linux_desktop {
namespace {

bool isReturn(int key) {
  return key == Qt::Key_Return || key == Qt::Key_Enter;
}

}  // namespace

ButtonWidget::ButtonWidget(std::shared_ptr<platform::NSButton> button, PressObserver& presses,
                           QWidget* parent)
    : QPushButton(parent), button_(std::move(button)) {
  setAutoDefault(false);
  QSizePolicy policy(QSizePolicy::Fixed, QSizePolicy::Fixed, QSizePolicy::PushButton);
  policy.setRetainSizeWhenHidden(true);
  setSizePolicy(policy);
  connect(this, &QPushButton::clicked, this, [this, &presses] {
    const auto pressed = button_;
    const QPointF middle = mapTo(window(), rect().center());
    presses.pressed(*pressed, middle);
    presses.released(*pressed, middle);
  });
  viewDidChange(platform::ViewChange::Content);
}

void ButtonWidget::viewDidChange(platform::ViewChange) {
  setText(plainTitle(button_->title()));
}

bool ButtonWidget::actsOn(int key) const {
  return key == Qt::Key_Space || key == Qt::Key_Select || isReturn(key);
}

void ButtonWidget::keyPressEvent(QKeyEvent* event) {
  if (!isReturn(event->key())) {
    QPushButton::keyPressEvent(event);
  } else if (!event->isAutoRepeat()) {
    click();
  }
}

}  // namespace linux_desktop
