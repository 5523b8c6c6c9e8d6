#include "desktop/linux/ui/WidgetAccessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QMenu>
#include <functional>
#include <utility>

#include "desktop/linux/ui/ButtonWidgets.h"
#include "desktop/linux/ui/ContentWidgets.h"
#include "desktop/linux/ui/LayerWidget.h"
#include "desktop/linux/ui/PanelWindow.h"

namespace linux_desktop {
namespace {

/// What can be pressed, under Qt's name for that and another one.
class PressableAccessible : public QAccessibleWidget {
 public:
  [[nodiscard]] QStringList actionNames() const override {
    return QStringList{action_, pressAction()} + QAccessibleWidget::actionNames();
  }
  void doAction(const QString& name) override {
    if (name == action_ || name == pressAction()) {
      press_();
    } else {
      QAccessibleWidget::doAction(name);
    }
  }

 protected:
  PressableAccessible(QWidget* widget, QAccessible::Role role, QString action,
                      std::function<void()> press)
      : QAccessibleWidget(widget, role), action_(std::move(action)), press_(std::move(press)) {}

 private:
  QString action_;
  std::function<void()> press_;
};

/// Where a press is a press and a release of the view, and the model has the state. Qt's own for
/// checkboxes would flip the widget and press nothing.
class SwitchAccessible final : public PressableAccessible {
 public:
  SwitchAccessible(ViewWidget& switched, std::function<void()> click)
      : PressableAccessible(&switched.widget(), QAccessible::CheckBox, toggleAction(),
                            std::move(click)),
        switched_(switched) {}

  [[nodiscard]] QString text(QAccessible::Text kind) const override {
    const platform::NSView& view = switched_.view();
    if (kind == QAccessible::Name) return nameOf(view);
    const bool isHelp = kind == QAccessible::Description || kind == QAccessible::Help;
    return isHelp ? QString::fromStdString(view.accessibilityHelp())
                  : QAccessibleWidget::text(kind);
  }

  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.checkable = true;
    state.checked = switched_.view().accessibilityValue().value_or(false);
    return state;
  }

 private:
  static QString nameOf(const platform::NSView& view) {
    const auto* button = dynamic_cast<const platform::NSButton*>(&view);
    const bool isTitled = view.accessibilityLabel().empty() && button != nullptr;
    return QString::fromStdString(isTitled ? button->title() : view.accessibilityLabel());
  }

  ViewWidget& switched_;
};

class BoxAccessible final : public QAccessibleWidget {
 public:
  explicit BoxAccessible(BoxWidget& box)
      : QAccessibleWidget(&box, QAccessible::Grouping), box_(box) {}

  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.selected = box_.isMarked();
    return state;
  }

 private:
  BoxWidget& box_;
};

/// Qt leaves menus out of the children of what they belong to.
class MenuButtonAccessible final : public PressableAccessible {
 public:
  explicit MenuButtonAccessible(MenuButton& button)
      : PressableAccessible(&button, QAccessible::ButtonMenu, showMenuAction(),
                            [&button] { button.click(); }),
        button_(button) {}

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

 private:
  [[nodiscard]] QMenu* menu() const {
    return button_.findChild<QMenu*>(QString(), Qt::FindDirectChildrenOnly);
  }

  MenuButton& button_;
};

class WindowAccessible final : public QAccessibleWidget {
 public:
  explicit WindowAccessible(PanelWindow& window)
      : QAccessibleWidget(&window, QAccessible::Window) {}

  [[nodiscard]] int childCount() const override { return static_cast<int>(shown().size()); }
  [[nodiscard]] QAccessibleInterface* child(int index) const override {
    return shown().value(index);
  }
  [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
    return static_cast<int>(shown().indexOf(const_cast<QAccessibleInterface*>(child)));
  }

 private:
  /// Qt counts hidden widgets, too.
  [[nodiscard]] QList<QAccessibleInterface*> shown() const {
    QList<QAccessibleInterface*> children;
    for (int index = 0; index < QAccessibleWidget::childCount(); ++index) {
      QAccessibleInterface* child = QAccessibleWidget::child(index);
      const auto* widget = child == nullptr ? nullptr : qobject_cast<QWidget*>(child->object());
      if (widget != nullptr && !widget->isHidden()) children.append(child);
    }
    return children;
  }
};

}  // namespace

QAccessibleInterface* accessibleOf(const QString& /*className*/, QObject* object) {
  if (auto* window = dynamic_cast<PanelWindow*>(object)) return new WindowAccessible(*window);
  if (auto* button = dynamic_cast<MenuButton*>(object)) return new MenuButtonAccessible(*button);
  if (auto* box = dynamic_cast<BoxWidget*>(object)) return new BoxAccessible(*box);
  if (auto* path = dynamic_cast<FilePathWidget*>(object)) {
    return new QAccessibleWidget(path, QAccessible::StaticText);
  }
  if (auto* checkbox = dynamic_cast<CheckboxWidget*>(object)) {
    return new SwitchAccessible(*checkbox, [checkbox] { checkbox->click(); });
  }
  auto* layers = dynamic_cast<LayerWidget*>(object);
  const bool isSwitch = layers != nullptr &&
                        layers->view().accessibilityRole() == platform::NSAccessibilityRole::Switch;
  return isSwitch ? new SwitchAccessible(*layers, [layers] { layers->click(); }) : nullptr;
}

}  // namespace linux_desktop
