#pragma once

#include <QWidget>
#include <QWidgetItem>
#include <algorithm>

namespace linux_desktop {

/// A widget in a layout that is placed by its inner part and reaches `overhang` beyond it on each
/// side. With an overhang it keeps its preferred size, in the middle of its cell.
class OverhangItem final : public QWidgetItem {
 public:
  OverhangItem(QWidget* widget, int overhang) : QWidgetItem(widget), overhang_(overhang) {}

  [[nodiscard]] QSize sizeHint() const override { return inner(QWidgetItem::sizeHint()); }
  [[nodiscard]] QSize minimumSize() const override { return inner(QWidgetItem::minimumSize()); }
  [[nodiscard]] QSize maximumSize() const override { return inner(QWidgetItem::maximumSize()); }
  void setGeometry(const QRect& cell) override {
    if (overhang_ == 0) {
      QWidgetItem::setGeometry(cell);
      return;
    }
    QRect placed(QPoint(), QWidgetItem::sizeHint());
    placed.moveCenter(cell.center());
    widget()->setGeometry(placed);
  }

 private:
  [[nodiscard]] QSize inner(QSize size) const {
    return {std::max(0, size.width() - 2 * overhang_), std::max(0, size.height() - 2 * overhang_)};
  }

  int overhang_;
};

}  // namespace linux_desktop
