#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSView.h"
#include "platform/coregraphics/CGWindow.h"
#include "platform/port/Windows.h"

namespace platform {

/// What a window looks like around its content.
enum class NSWindowStyle {
  Borderless,  ///< nothing; it does not take the keyboard
  Titled,
  Popover,  ///< floats at what it belongs to, without a title bar
};

/// Which spaces a window is on, with the platform's numbers.
enum class NSWindowCollectionBehavior { Default = 0, CanJoinAllSpaces = 1 };
/// How a window comes and goes, with the platform's numbers.
enum class NSWindowAnimationBehavior { Default = 0, None = 2 };
/// How a window's pixels are kept, with the platform's number.
enum class NSBackingStoreType { Buffered = 2 };

class NSScreen;
class NSViewController;
class NSWindowController;

/// Told what the user does with a window.
class NSWindowDelegate {
 public:
  virtual ~NSWindowDelegate() = default;
  virtual void windowShouldClose() = 0;
  virtual void userActedElsewhere() {}
};

/// A window: a tree of views that is shown on a screen as a whole. It has a peer of the desktop
/// from the first time it is shown. Changes of its views reach the peer once a turn of the loop.
class NSWindow : public NSObject, private port::WindowClient {
 public:
  explicit NSWindow(NSWindowStyle style) : style_(style) {}
  /// A window with that content rectangle, relative to `screen`'s lower left corner. Pixels are
  /// always buffered, and a peer always made only when it is needed (`defer`).
  NSWindow(NSRect contentRect, NSWindowStyle style, NSBackingStoreType backing, bool defer,
           const NSScreen& screen);
  ~NSWindow() override;

  [[nodiscard]] NSWindowStyle style() const { return style_; }
  [[nodiscard]] const std::string& title() const { return title_; }
  void setTitle(std::string title) { title_ = std::move(title); }
  [[nodiscard]] const std::shared_ptr<NSView>& contentView() const { return contentView_; }
  /// A borderless window's content view fills it, now and when its frame changes.
  void setContentView(std::shared_ptr<NSView> view);
  /// Whose view it shows; null where that has no controller. It is told of its comings and goings.
  [[nodiscard]] const std::shared_ptr<NSViewController>& contentViewController() const {
    return contentController_;
  }
  /// Loads the view.
  void setContentViewController(std::shared_ptr<NSViewController> controller);
  /// Not owned; outlives its being set.
  void setDelegate(NSWindowDelegate* delegate) { delegate_ = delegate; }

  // --- Where and how it is shown ---
  /// In points, in the coordinates of all screens. Means something for a borderless window.
  [[nodiscard]] const NSRect& frame() const { return frame_; }
  /// `display`: redraws at once. `animate`: moves there visibly. Neither is asked for by anyone;
  /// true is a programming error.
  void setFrame(NSRect frame, bool display, bool animate);
  [[nodiscard]] CGWindowLevel level() const { return level_; }
  void setLevel(CGWindowLevel level) { level_ = level; }
  [[nodiscard]] virtual bool acceptsFirstResponder() const { return true; }
  /// Every desktop treats a window at its own frame as these would have it: it is on all spaces, in
  /// no list of windows, comes and goes at once and with nobody else, and has neither cursor
  /// rectangles nor a queue of events to discard. So they find nothing to set.
  void setCollectionBehavior(NSWindowCollectionBehavior) {}
  void setCanHide(bool) {}
  void setExcludedFromWindowsMenu(bool) {}
  void setHidesOnDeactivate(bool) {}
  void setRestorable(bool) {}
  void setAnimationBehavior(NSWindowAnimationBehavior) {}
  void discardCursorRects() {}
  void discardEventsMatchingMask(NSEventMask) {}
  /// Null when the window has none.
  [[nodiscard]] std::shared_ptr<NSWindowController> windowController() const {
    return controller_.lock();
  }
  void setWindowController(const std::shared_ptr<NSWindowController>& controller) {
    controller_ = controller;
  }

  [[nodiscard]] bool isVisible() const { return visible_; }
  [[nodiscard]] bool isKeyWindow() const { return key_; }
  void show(const port::Placement& placement);
  /// Shows the window behind the others of its level.
  void orderBack(NSObject* sender);
  void orderOut(NSObject* sender);
  /// Asks the desktop for the keyboard.
  void makeKeyWindow();
  /// Sends what has changed to the peer now rather than at the end of the turn.
  void displayIfNeeded();
  /// For the views of the window.
  void viewDidChange(NSView& view, ViewChange change);

  /// Shows a copy of `alert` on the window once the sheets that came before have been answered. A
  /// sheet is on the screen only while its window is, and the user cannot close the window then.
  /// `completionHandler` gets the number of the chosen button, see NSAlert. For NSAlert.
  void beginSheet(const NSAlert& alert, std::function<void(int response)> completionHandler);

 private:
  void windowDidBecomeKey() override;
  void windowDidResignKey() override;
  void windowShouldClose() override;
  void userActedElsewhere() override;
  void mouseDown(NSView& view, const NSEvent& event) override;
  void mouseUp(NSView& view, const NSEvent& event) override;
  void keyDown(const NSEvent& event) override;
  /// `work` on this window, unless that is gone by then.
  [[nodiscard]] std::function<void()> whileThere(std::function<void(NSWindow& self)> work);
  void deliver(std::function<void(NSWindow& self)> report);
  static void sendMouseEvent(NSView& view, const NSEvent& event,
                             void (NSView::*handler)(const NSEvent&));

  void fillWithContent();
  void displaySoon();
  void showSheetSoon();
  void showFirstSheet();
  void endFirstSheet(std::size_t button);

  struct Sheet {
    NSAlert alert;
    std::function<void(int response)> completionHandler;
  };

  NSWindowStyle style_;
  NSRect frame_;
  CGWindowLevel level_ = CGWindowLevelForKey(CGWindowLevelKey::Normal);
  std::weak_ptr<NSWindowController> controller_;
  std::string title_;
  std::shared_ptr<NSView> contentView_;
  std::shared_ptr<NSViewController> contentController_;
  NSWindowDelegate* delegate_ = nullptr;
  std::unique_ptr<port::WindowPeer> peer_;
  /// What is not answered yet, the oldest first, and the peer of the first while it is shown.
  std::deque<Sheet> sheets_;
  std::unique_ptr<port::Windows::ModalPeer> sheetPeer_;
  std::vector<port::ChangedView> changes_;
  bool frameChanged_ = false;
  bool displayScheduled_ = false;
  bool visible_ = false;
  bool key_ = false;
};

}  // namespace platform
