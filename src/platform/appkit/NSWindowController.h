#pragma once

#include <memory>

#include "platform/appkit/NSWindow.h"

namespace platform {

/// Owns a window for the sake of whoever opens it.
class NSWindowController : public NSObject {
 public:
  [[nodiscard]] const std::shared_ptr<NSWindow>& window() const { return window_; }
  void setWindow(std::shared_ptr<NSWindow> window) { window_ = std::move(window); }

 private:
  std::shared_ptr<NSWindow> window_;
};

}  // namespace platform
