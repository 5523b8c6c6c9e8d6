#pragma once

#include <QCheckBox>
#include <QPushButton>
#include <QString>
#include <QToolButton>
#include <memory>
#include <string>

#include "desktop/linux/ui/ViewWidget.h"
#include "platform/appkit/NSControl.h"

namespace linux_desktop {

/// A title for one of Qt's buttons, none of whose letters becomes a shortcut.
[[nodiscard]] inline QString plainTitle(const std::string& title) {
  return QString::fromStdString(title).replace(QLatin1Char('&'), QLatin1String("&&"));
}

/// The desktop's own push button. A click, Space, Return and assistive technology press it: one
/// press and one release are reported, at once. Hidden, it keeps its room, so that what is beside
/// it stays where it is.
class ButtonWidget final : public WidgetOf<platform::NSButton, QPushButton> {
 public:
  /// `presses` outlives the widget.
  ButtonWidget(std::shared_ptr<platform::NSButton> button, PressObserver& presses, QWidget* parent);

  void viewDidChange(platform::ViewChange change) override;
  [[nodiscard]] bool actsOn(int key) const override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};

/// The desktop's own checkbox. Pressed like a push button, without Return; it never flips on its
/// own account, the model does.
class CheckboxWidget final : public WidgetOf<platform::NSButton, QCheckBox> {
 public:
  /// `presses` outlives the widget.
  CheckboxWidget(std::shared_ptr<platform::NSButton> button, PressObserver& presses,
                 QWidget* parent);

  void viewDidChange(platform::ViewChange change) override;
  [[nodiscard]] bool actsOn(int key) const override;

 protected:
  void nextCheckState() override {}
};

/// The button with three lines from which a window's menu drops down, a QMenu that is its child.
/// F10 presses it, as it opens a menu bar elsewhere.
class MenuButton final : public QToolButton {
 public:
  explicit MenuButton(QWidget* parent);

  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace linux_desktop
