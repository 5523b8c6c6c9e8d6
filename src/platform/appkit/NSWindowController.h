#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/appkit/NSViewController.h"
#include "platform/appkit/NSWindow.h"

namespace platform {

/// Owns a window for the sake of whoever opens it. One that an interface description speaks of is
/// titled, has a controller of what is in it, loads the first time that it is asked for, and is
/// kept when the user closes it.
class NSWindowController : public NSObject, private NSWindowDelegate {
 public:
  NSWindowController() = default;
  ~NSWindowController() override;

  [[nodiscard]] bool initWithCoder(const NSCoder& coder) override;
  /// Makes the controller of the window's content. Set by the storyboard.
  using Loader = std::function<std::shared_ptr<NSViewController>()>;
  void setLoader(Loader loader) { loader_ = std::move(loader); }

  /// Null when there is neither a window nor a loader.
  [[nodiscard]] const std::shared_ptr<NSWindow>& window();
  void setWindow(std::shared_ptr<NSWindow> window) { window_ = std::move(window); }
  /// Null before the window has loaded.
  [[nodiscard]] std::shared_ptr<NSViewController> contentViewController() const {
    return window_ ? window_->contentViewController() : nullptr;
  }

  /// Shows the window in front of the application's others and asks for the keyboard. There must be
  /// one. `sender` is not used.
  void showWindow(NSObject* sender);
  /// Takes the window off the screen, as the user does who closes it. Closed already: does nothing.
  void close() {
    if (window_) window_->orderOut(nullptr);
  }

  /// Once, when the window and what is in it have loaded.
  virtual void windowDidLoad() {}
  /// A key press that no control of the window took. The base handling closes the window on Escape
  /// without a modifier and lets all else be.
  virtual void keyDown(const NSEvent& event);

 private:
  void loadWindow();
  void windowShouldClose() override { close(); }

  Loader loader_;
  std::string title_;
  std::shared_ptr<NSWindow> window_;
};

}  // namespace platform
