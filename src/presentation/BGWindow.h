#pragma once

#include "platform/appkit/NSWindow.h"

namespace presentation {

/// The window that covers a screen's desktop icons: above them, below every normal window.
class BGWindow final : public platform::NSWindow {
 public:
  using NSWindow::NSWindow;

  /// The keyboard never goes to a cover.
  [[nodiscard]] bool acceptsFirstResponder() const override { return false; }
};

}  // namespace presentation
