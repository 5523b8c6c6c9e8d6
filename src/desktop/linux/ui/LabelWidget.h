#pragma once

#include <QLabel>
#include <memory>

#include "desktop/linux/ui/ViewWidget.h"
#include "platform/appkit/NSTextField.h"

namespace linux_desktop {

/// A label in the desktop's font and the theme's colours. Of a shortcut it shows what can be read.
class LabelWidget final : public QLabel, public ViewWidget {
 public:
  LabelWidget(std::shared_ptr<platform::NSTextField> field, QWidget* parent);

  [[nodiscard]] QWidget& widget() override { return *this; }
  [[nodiscard]] const platform::NSView& view() const override { return *field_; }
  void viewDidChange(platform::ViewChange change) override;
  void themeDidChange() override;
  /// The text, after what the view is called where that says something else.
  [[nodiscard]] QString accessibleName() const override;

 private:
  std::shared_ptr<platform::NSTextField> field_;
};

}  // namespace linux_desktop
