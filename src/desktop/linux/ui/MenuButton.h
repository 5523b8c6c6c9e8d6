#pragma once

#include <QToolButton>

namespace linux_desktop {

/// The button with three lines behind which a window keeps its menu.
class MenuButton final : public QToolButton {
 public:
  explicit MenuButton(QWidget* parent);

  /// Where the menu pops up, in Qt's coordinates of the whole desktop.
  [[nodiscard]] QPoint menuPosition() const { return mapToGlobal(rect().bottomLeft()); }

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace linux_desktop
