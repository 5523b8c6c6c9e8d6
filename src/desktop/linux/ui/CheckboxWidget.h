#pragma once

#include <QCheckBox>
#include <memory>

#include "desktop/linux/ui/PressObserver.h"
#include "desktop/linux/ui/ViewWidget.h"
#include "platform/appkit/NSButton.h"

namespace linux_desktop {

/// The desktop's own checkbox. Pressed like a push button, without Return; it never flips on its
/// own account, the model does.
class CheckboxWidget final : public QCheckBox, public ViewWidget {
 public:
  /// `presses` outlives the widget.
  CheckboxWidget(std::shared_ptr<platform::NSButton> button, PressObserver& presses,
                 QWidget* parent);

  [[nodiscard]] QWidget& widget() override { return *this; }
  [[nodiscard]] const platform::NSView& view() const override { return *button_; }
  void viewDidChange(platform::ViewChange change) override;
  void themeDidChange() override {}
  [[nodiscard]] bool actsOn(int key) const override;

 protected:
  void nextCheckState() override {}

 private:
  std::shared_ptr<platform::NSButton> button_;
};

}  // namespace linux_desktop
