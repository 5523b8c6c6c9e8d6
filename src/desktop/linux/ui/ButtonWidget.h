#pragma once

#include <QPushButton>
#include <memory>

#include "desktop/linux/ui/PressObserver.h"
#include "desktop/linux/ui/ViewWidget.h"
#include "platform/appkit/NSButton.h"

namespace linux_desktop {

/// The desktop's own push button. A click, Space, Return and assistive technology press it: one
/// press and one release are reported, at once. Hidden, it keeps its room, so that what is beside
/// it stays where it is.
class ButtonWidget final : public QPushButton, public ViewWidget {
 public:
  /// `presses` outlives the widget.
  ButtonWidget(std::shared_ptr<platform::NSButton> button, PressObserver& presses, QWidget* parent);

  [[nodiscard]] QWidget& widget() override { return *this; }
  [[nodiscard]] const platform::NSView& view() const override { return *button_; }
  void viewDidChange(platform::ViewChange change) override;
  void themeDidChange() override {}
  [[nodiscard]] bool actsOn(int key) const override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  std::shared_ptr<platform::NSButton> button_;
};

}  // namespace linux_desktop
