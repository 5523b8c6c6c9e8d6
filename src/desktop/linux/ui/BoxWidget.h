#pragma once

#include <QVBoxLayout>
#include <memory>

#include "desktop/linux/ui/ViewWidget.h"
#include "platform/appkit/NSBox.h"

namespace linux_desktop {

/// A field with a rounded frame around its one subview. In one of the theme's colours the frame is
/// a thin line. In any other it marks the box: strong, in a shade of that colour that stands out
/// from the window, and with a breath of it over the field.
class BoxWidget final : public QWidget, public ViewWidget {
 public:
  BoxWidget(std::shared_ptr<platform::NSBox> box, QWidget* parent);

  [[nodiscard]] QWidget& widget() override { return *this; }
  [[nodiscard]] const platform::NSView& view() const override { return *box_; }
  void viewDidChange(platform::ViewChange change) override;
  void themeDidChange() override;
  /// Where the subview goes.
  [[nodiscard]] QBoxLayout& inside() { return inside_; }
  [[nodiscard]] bool isMarked() const { return box_->borderColor().rgba().has_value(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::shared_ptr<platform::NSBox> box_;
  QVBoxLayout inside_{this};
};

}  // namespace linux_desktop
