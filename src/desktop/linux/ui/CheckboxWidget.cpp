#include "desktop/linux/ui/CheckboxWidget.h"

#include <utility>

#include "desktop/linux/ui/PlainTitle.h"

namespace linux_desktop {

CheckboxWidget::CheckboxWidget(std::shared_ptr<platform::NSButton> button, PressObserver& presses,
                               QWidget* parent)
    : QCheckBox(parent), button_(std::move(button)) {
  connect(this, &QCheckBox::clicked, this, [this, &presses] {
    const auto pressed = button_;
    const QPointF middle = mapTo(window(), rect().center());
    presses.pressed(*pressed, middle);
    presses.released(*pressed, middle);
  });
  viewDidChange(platform::ViewChange::Content);
}

void CheckboxWidget::viewDidChange(platform::ViewChange) {
  setText(plainTitle(button_->title()));
  setChecked(button_->state() == platform::NSControlStateValue::On);
}

bool CheckboxWidget::actsOn(int key) const {
  return key == Qt::Key_Space || key == Qt::Key_Select;
}

}  // namespace linux_desktop
