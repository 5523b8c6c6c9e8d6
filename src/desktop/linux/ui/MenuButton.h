#pragma once

#include <QToolButton>

namespace linux_desktop {

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
