#pragma once

#include "desktop/linux/windowsystem/KeyTranslator.h"
#include "desktop/linux/x11/XKeyboard.h"

namespace linux_desktop {

/// Of key presses that Qt took from the X server.
class XKeyTranslator final : public KeyTranslator {
 public:
  /// `keyboard` outlives this.
  explicit XKeyTranslator(XKeyboard& keyboard) : keyboard_(keyboard) {}

  [[nodiscard]] std::optional<platform::NSEvent> translate(const QKeyEvent& press) override;

 private:
  XKeyboard& keyboard_;
};

}  // namespace linux_desktop
