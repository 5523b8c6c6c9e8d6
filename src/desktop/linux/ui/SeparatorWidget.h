#pragma once

#include <memory>
#include <utility>

#include "desktop/linux/ui/ViewWidget.h"

namespace linux_desktop {

/// A thin line across its column.
class SeparatorWidget final : public QWidget, public ViewWidget {
 public:
  SeparatorWidget(std::shared_ptr<platform::NSView> view, QWidget* parent)
      : QWidget(parent), view_(std::move(view)) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  }

  [[nodiscard]] QWidget& widget() override { return *this; }
  [[nodiscard]] const platform::NSView& view() const override { return *view_; }
  void viewDidChange(platform::ViewChange) override {}
  void themeDidChange() override { update(); }
  [[nodiscard]] QSize sizeHint() const override { return {1, 1}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::shared_ptr<platform::NSView> view_;
};

}  // namespace linux_desktop
