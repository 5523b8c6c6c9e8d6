#include "platform/appkit/NSWindow.h"

#include <algorithm>
#include <utility>

#include "platform/Runtime.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSWindowController.h"
#include "platform/appkit/NSWorkspace.h"
#include "platform/foundation/NSRunLoop.h"
#include "platform/foundation/Process.h"

namespace platform {

NSWindow::NSWindow(NSRect contentRect, NSWindowStyle style, NSBackingStoreType, bool,
                   const NSScreen& screen)
    : style_(style),
      frame_{screen.frame().x + contentRect.x, screen.frame().y + contentRect.y, contentRect.width,
             contentRect.height} {}

NSWindow::~NSWindow() {
  sheetPeer_.reset();
  peer_.reset();
  if (contentView_) contentView_->setWindow(nullptr);
}

void NSWindow::setContentView(std::shared_ptr<NSView> view) {
  if (contentView_) contentView_->setWindow(nullptr);
  contentView_ = std::move(view);
  if (!contentView_) return;
  fillWithContent();
  contentView_->setWindow(this);
  viewDidChange(*contentView_, ViewChange::Subviews);
}

void NSWindow::setContentViewController(std::shared_ptr<NSViewController> controller) {
  contentController_ = std::move(controller);
  setContentView(contentController_->view());
}

void NSWindow::fillWithContent() {
  if (contentView_ && style_ == NSWindowStyle::Borderless) {
    contentView_->setFrame({0, 0, frame_.width, frame_.height});
  }
}

void NSWindow::show(const port::Placement& placement) {
  const bool appears = !visible_ && contentController_;
  if (appears) contentController_->viewWillAppear();
  if (contentView_) contentView_->layoutSubtreeIfNeeded();
  if (!peer_) {
    // A new peer reads the whole model, so nothing that changed before is news to it.
    peer_ = Runtime::current().desktop().windows.createWindow(*this, *this);
    changes_.clear();
    frameChanged_ = false;
  }
  displayIfNeeded();
  visible_ = true;
  peer_->show(placement);
  if (!sheets_.empty()) showSheetSoon();
  if (appears) contentController_->viewDidAppear();
}

void NSWindow::orderBack(NSObject*) {
  show(port::PlacedAtFrame{.behind = true});
}

void NSWindow::orderOut(NSObject*) {
  if (!visible_) return;
  if (contentController_) contentController_->viewWillDisappear();
  visible_ = false;
  key_ = false;
  sheetPeer_.reset();
  peer_->hide();
  if (contentController_) contentController_->viewDidDisappear();
}

void NSWindow::makeKeyWindow() {
  if (visible_) peer_->makeKey();
}

void NSWindow::setFrame(NSRect frame, bool display, bool animate) {
  if (display || animate) programmingError("a window's frame changes with the next display only");
  if (frame == frame_) return;
  frame_ = frame;
  frameChanged_ = true;
  fillWithContent();
  displaySoon();
}

void NSWindow::displayIfNeeded() {
  if (!peer_ || (changes_.empty() && !frameChanged_)) return;
  peer_->update(std::exchange(changes_, {}), std::exchange(frameChanged_, false));
}

void NSWindow::viewDidChange(NSView& view, ViewChange change) {
  const auto known = std::ranges::find_if(
      changes_, [&view](const port::ChangedView& entry) { return entry.view.get() == &view; });
  if (known != changes_.end()) {
    known->change = known->change | change;
    return;
  }
  changes_.push_back({std::static_pointer_cast<NSView>(view.shared_from_this()), change});
  displaySoon();
}

void NSWindow::displaySoon() {
  if (std::exchange(displayScheduled_, true)) return;
  NSRunLoop::mainRunLoop().beforeWaiting(whileThere([](NSWindow& self) {
    self.displayScheduled_ = false;
    self.displayIfNeeded();
  }));
}

// --- Sheets ---

void NSWindow::beginSheet(const NSAlert& alert,
                          std::function<void(int response)> completionHandler) {
  sheets_.push_back({alert, std::move(completionHandler)});
  showSheetSoon();
}

// Not at once: a window that is about to close would flash the sheet.
void NSWindow::showSheetSoon() {
  NSRunLoop::mainRunLoop().beforeWaiting(whileThere([](NSWindow& self) { self.showFirstSheet(); }));
}

void NSWindow::showFirstSheet() {
  if (!visible_ || sheetPeer_ || sheets_.empty()) return;
  const auto answered = [weak = weak_from_this()](std::size_t button) {
    // Later, because the sheet's peer is still reporting.
    NSRunLoop::mainRunLoop().enqueue([weak, button] {
      if (const auto self = std::static_pointer_cast<NSWindow>(weak.lock())) {
        self->endFirstSheet(button);
      }
    });
  };
  sheetPeer_ =
      Runtime::current().desktop().windows.showSheet(sheets_.front().alert, *peer_, answered);
}

void NSWindow::endFirstSheet(std::size_t button) {
  const Sheet ended = std::move(sheets_.front());
  sheets_.pop_front();
  sheetPeer_.reset();
  if (!sheets_.empty()) showSheetSoon();
  if (ended.completionHandler) {
    ended.completionHandler(NSAlert::kFirstButtonReturn + static_cast<int>(button));
  }
}

// --- Reports of the peer ---

std::function<void()> NSWindow::whileThere(std::function<void(NSWindow& self)> work) {
  return [weak = weak_from_this(), work = std::move(work)] {
    if (const auto self = std::static_pointer_cast<NSWindow>(weak.lock())) work(*self);
  };
}

void NSWindow::deliver(std::function<void(NSWindow& self)> report) {
  NSRunLoop::mainRunLoop().deliver(whileThere(std::move(report)));
}

void NSWindow::windowDidBecomeKey() {
  deliver([](NSWindow& self) { self.key_ = self.visible_; });
}

void NSWindow::windowDidResignKey() {
  deliver([](NSWindow& self) { self.key_ = false; });
}

void NSWindow::windowShouldClose() {
  deliver([](NSWindow& self) {
    if (self.delegate_ != nullptr && !self.sheetPeer_) self.delegate_->windowShouldClose();
  });
}

void NSWindow::userActedElsewhere() {
  deliver([](NSWindow& self) {
    if (self.delegate_ != nullptr) self.delegate_->userActedElsewhere();
  });
}

void NSWindow::mouseDown(NSView& view, const NSEvent& event) {
  sendMouseEvent(view, event, &NSView::mouseDown);
}

void NSWindow::mouseUp(NSView& view, const NSEvent& event) {
  sendMouseEvent(view, event, &NSView::mouseUp);
}

void NSWindow::keyDown(const NSEvent& event) {
  NSApplication::sharedApplication().sendEvent(
      event, whileThere([event](NSWindow& self) {
        if (const auto controller = self.windowController()) controller->keyDown(event);
      }));
}

void NSWindow::sendMouseEvent(NSView& view, const NSEvent& event,
                              void (NSView::*handler)(const NSEvent&)) {
  const auto target = std::static_pointer_cast<NSView>(view.shared_from_this());
  NSApplication::sharedApplication().sendEvent(
      event, [target, event, handler] { ((*target).*handler)(event); });
}

}  // namespace platform
