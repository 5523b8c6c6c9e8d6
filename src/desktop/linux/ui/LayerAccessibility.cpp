#include "desktop/linux/ui/LayerAccessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QMenu>
#include <memory>

#include "desktop/linux/ui/LayerWidget.h"
#include "desktop/linux/ui/MenuButton.h"

namespace linux_desktop {
namespace {

class LayerAccessible final : public QAccessibleWidget {
 public:
  explicit LayerAccessible(LayerWidget& widget)
      : QAccessibleWidget(&widget, QAccessible::CheckBox), widget_(widget) {}

  [[nodiscard]] QString text(QAccessible::Text kind) const override {
    switch (kind) {
      case QAccessible::Name:
        return QString::fromStdString(widget_.view().accessibilityLabel());
      case QAccessible::Description:
      case QAccessible::Help:
        return QString::fromStdString(widget_.view().accessibilityHelp());
      default:
        return QAccessibleWidget::text(kind);
    }
  }

  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.checkable = true;
    state.checked = widget_.view().accessibilityValue().value_or(false);
    return state;
  }

  [[nodiscard]] QStringList actionNames() const override {
    return QStringList{toggleAction(), pressAction()} + QAccessibleWidget::actionNames();
  }

  void doAction(const QString& name) override {
    if (name == toggleAction() || name == pressAction()) {
      widget_.click();
    } else {
      QAccessibleWidget::doAction(name);
    }
  }

 private:
  LayerWidget& widget_;
};

/// Qt leaves menus out of the children of what they belong to.
class MenuButtonAccessible final : public QAccessibleWidget {
 public:
  explicit MenuButtonAccessible(MenuButton& button)
      : QAccessibleWidget(&button, QAccessible::ButtonMenu), button_(button) {}

  [[nodiscard]] int childCount() const override { return menu() == nullptr ? 0 : 1; }
  [[nodiscard]] QAccessibleInterface* child(int index) const override {
    return index == 0 ? QAccessible::queryAccessibleInterface(menu()) : nullptr;
  }
  [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
    return child != nullptr && menu() != nullptr && child->object() == menu() ? 0 : -1;
  }

  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.hasPopup = true;
    return state;
  }

  [[nodiscard]] QStringList actionNames() const override {
    return QStringList{showMenuAction(), pressAction()} + QAccessibleWidget::actionNames();
  }

  void doAction(const QString& name) override {
    if (name == showMenuAction() || name == pressAction()) {
      button_.click();
    } else {
      QAccessibleWidget::doAction(name);
    }
  }

 private:
  [[nodiscard]] QMenu* menu() const {
    return button_.findChild<QMenu*>(QString(), Qt::FindDirectChildrenOnly);
  }

  MenuButton& button_;
};

QAccessibleInterface* make(const QString&, QObject* object) {
  if (auto* button = dynamic_cast<MenuButton*>(object))
    return std::make_unique<MenuButtonAccessible>(*button).release();
  auto* widget = dynamic_cast<LayerWidget*>(object);
  const bool isSwitch = widget != nullptr &&
                        widget->view().accessibilityRole() == platform::NSAccessibilityRole::Switch;
  // Qt's cache of interfaces takes it over.
  return isSwitch ? std::make_unique<LayerAccessible>(*widget).release() : nullptr;
}

}  // namespace

LayerAccessibility::LayerAccessibility() {
  QAccessible::installFactory(&make);
}
LayerAccessibility::~LayerAccessibility() {
  QAccessible::removeFactory(&make);
}

}  // namespace linux_desktop
