#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/appkit/NSView.h"
#include "platform/port/Windows.h"

namespace platform {

/// What a window looks like around its content.
enum class NSWindowStyle {
  Titled,
  Popover,  ///< floats at what it belongs to, without a title bar
};

/// Told what the user does with a window.
class NSWindowDelegate {
 public:
  virtual ~NSWindowDelegate() = default;
  virtual void windowShouldClose() = 0;
  virtual void userActedElsewhere() = 0;
};

/// A window: a tree of views that is shown on a screen as a whole. It has a peer of the desktop
/// from the first time it is shown. Changes of its views reach the peer once a turn of the loop.
class NSWindow final : public NSObject, private ViewHost, private port::WindowClient {
 public:
  explicit NSWindow(NSWindowStyle style) : style_(style) {}
  ~NSWindow() override;

  [[nodiscard]] NSWindowStyle style() const { return style_; }
  [[nodiscard]] const std::string& title() const { return title_; }
  void setTitle(std::string title) { title_ = std::move(title); }
  [[nodiscard]] const std::shared_ptr<NSView>& contentView() const { return contentView_; }
  void setContentView(std::shared_ptr<NSView> view);
  /// Not owned; outlives its being set.
  void setDelegate(NSWindowDelegate* delegate) { delegate_ = delegate; }

  [[nodiscard]] bool isVisible() const { return visible_; }
  [[nodiscard]] bool isKeyWindow() const { return key_; }
  void show(const port::Placement& placement);
  void orderOut();
  /// Asks the desktop for the keyboard.
  void makeKeyWindow();
  /// Sends what has changed to the peer now rather than at the end of the turn.
  void displayIfNeeded();

 private:
  void viewDidChange(NSView& view, ViewChange change) override;
  [[nodiscard]] NSWindow* window() override { return this; }
  void windowDidBecomeKey() override;
  void windowDidResignKey() override;
  void windowShouldClose() override;
  void userActedElsewhere() override;
  void mouseDown(NSView& view, const NSEvent& event) override;
  void mouseUp(NSView& view, const NSEvent& event) override;
  void deliver(std::function<void(NSWindow& self)> report);
  static void sendMouseEvent(NSView& view, const NSEvent& event,
                             void (NSView::*handler)(const NSEvent&));

  NSWindowStyle style_;
  std::string title_;
  std::shared_ptr<NSView> contentView_;
  NSWindowDelegate* delegate_ = nullptr;
  std::unique_ptr<port::WindowPeer> peer_;
  std::vector<port::ChangedView> changes_;
  bool displayScheduled_ = false;
  bool visible_ = false;
  bool key_ = false;
};

}  // namespace platform
