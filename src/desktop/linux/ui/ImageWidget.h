#pragma once

#include <QSvgRenderer>
#include <memory>

#include "desktop/linux/ui/ViewWidget.h"
#include "platform/appkit/NSImageView.h"

namespace linux_desktop {

/// A picture, or the shape of one in the view's tint.
class ImageWidget final : public QWidget, public ViewWidget {
 public:
  ImageWidget(std::shared_ptr<platform::NSImageView> view, QWidget* parent);

  [[nodiscard]] QWidget& widget() override { return *this; }
  [[nodiscard]] const platform::NSView& view() const override { return *view_; }
  void viewDidChange(platform::ViewChange change) override;
  void themeDidChange() override { update(); }
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::shared_ptr<platform::NSImageView> view_;
  QSvgRenderer renderer_;
};

}  // namespace linux_desktop
