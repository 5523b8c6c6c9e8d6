#include <gtest/gtest.h>

#include "platform/appkit/NSPopover.h"
#include "platform/appkit/NSStatusItem.h"
#include "platform/appkit/NSWorkspace.h"
#include "platform/foundation/NSRunLoop.h"
#include "support/DeskTest.h"

namespace platform {
namespace {

using Calls = std::vector<std::string>;

class WindowTest : public tests::DeskTest {
 protected:
  WindowTest() { window->setContentView(view); }
  void show() {
    window->show(port::PlacedByDesktop{});
    desk.loop.settle();
  }

  std::shared_ptr<NSWindow> window = std::make_shared<NSWindow>(NSWindowStyle::Titled);
  std::shared_ptr<NSView> view = std::make_shared<NSView>();
};

TEST_F(WindowTest, ChangesReachTheWindowOnceATurnAndBeforeASleepOrAShow) {
  view->setAccessibilityLabel("before it was shown");
  show();
  EXPECT_EQ(desk.screen.updates(), 0);
  const auto inner = std::make_shared<NSView>();
  view->addSubview(inner);
  inner->setFrame({1, 2, 3, 4});
  view->setAccessibilityLabel("after");
  EXPECT_EQ(desk.screen.updates(), 0);
  for (int turn = 0; turn < 2; ++turn) {
    desk.loop.settle();
    EXPECT_EQ(desk.screen.updates(), 1);
  }
  inner->setHidden(true);
  desk.loop.at(durationOf(0.5), [this] { EXPECT_EQ(desk.screen.updates(), 2); });
  NSRunLoop::mainRunLoop().sleep(1);
  window->orderOut(nullptr);
  view->setHidden(true);
  show();
  EXPECT_EQ(desk.screen.updates(), 3);
}

TEST_F(WindowTest, ViewsThatLeaveTheTreeConcernItNoMore) {
  show();
  const auto inner = std::make_shared<NSView>();
  view->addSubview(inner);
  EXPECT_EQ(inner->window(), window.get());
  const auto elsewhere = std::make_shared<NSView>();
  elsewhere->addSubview(inner);
  EXPECT_TRUE(view->subviews().empty());
  EXPECT_EQ(inner->window(), nullptr);
  desk.loop.settle();
  const int before = desk.screen.updates();
  inner->setHidden(true);
  desk.loop.settle();
  EXPECT_EQ(desk.screen.updates(), before);

  const auto next = std::make_shared<NSView>();
  window->setContentView(next);
  view->setHidden(true);
  EXPECT_EQ(view->window(), nullptr);
  EXPECT_EQ(next->window(), window.get());
  next->setHidden(true);
  window = std::make_shared<NSWindow>(NSWindowStyle::Titled);
  EXPECT_EQ(next->window(), nullptr);
  next->setHidden(false);
}

TEST_F(WindowTest, ContentFillsABorderlessWindowWhereverItGoes) {
  const auto screen = std::make_shared<NSScreen>(port::ScreenInfo{"B", {1280, 120, 1024, 600}, 1});
  window = std::make_shared<NSWindow>(NSRect{10, 20, 300, 200}, NSWindowStyle::Borderless,
                                      NSBackingStoreType::Buffered, true, *screen);
  EXPECT_EQ(window->frame(), (NSRect{1290, 140, 300, 200}));
  view->setFrame({7, 7, 7, 7});
  window->setContentView(view);
  EXPECT_EQ(view->frame(), (NSRect{0, 0, 300, 200}));
  window->orderBack(nullptr);
  window->setFrame({0, 0, 640, 480}, false, false);
  window->setFrame({0, 0, 640, 480}, false, false);
  EXPECT_EQ(view->frame(), (NSRect{0, 0, 640, 480}));
  EXPECT_EQ(desk.screen.updates(), 0);
  desk.loop.settle();
  EXPECT_EQ(desk.screen.updates(), 1);
  EXPECT_EQ(desk.log.calls("window.update"), (Calls{"window.update 0 0 640 480"}));
}

TEST_F(WindowTest, OnlyAVisibleWindowAsksForTheKeyboard) {
  window->makeKeyWindow();
  window->orderOut(nullptr);
  show();
  window->makeKeyWindow();
  desk.loop.settle();
  EXPECT_TRUE(window->isKeyWindow());
  window->orderOut(nullptr);
  EXPECT_FALSE(window->isKeyWindow());
  window->makeKeyWindow();
  EXPECT_EQ(desk.log.calls(), (Calls{"window.show", "window.makeKey", "window.hide"}));
  // What is gone by the time that the desktop agrees has it not.
  show();
  window->makeKeyWindow();
  window->orderOut(nullptr);
  desk.loop.settle();
  EXPECT_FALSE(window->isKeyWindow());
}

class PopoverTest : public tests::DeskTest {
 protected:
  PopoverTest() { popover->setContentViewController(std::make_shared<tests::Content>(calls)); }
  void show() {
    NSStatusBarButton& button = *item->button();
    popover->showRelativeToRect(button.bounds(), button, NSRectEdge::MinY);
  }
  Calls take() { return std::exchange(calls, {}); }

  Calls calls;
  std::shared_ptr<NSStatusItem> item =
      NSStatusBar::systemStatusBar().statusItemWithLength(NSStatusItem::kVariableLength);
  std::shared_ptr<NSPopover> popover = std::make_shared<NSPopover>();
};

TEST_F(PopoverTest, ItsControllerFollowsItsLife) {
  EXPECT_EQ(take(), Calls{});
  show();
  EXPECT_EQ(take(), (Calls{"viewDidLoad", "viewWillAppear", "viewDidAppear"}));
  show();
  EXPECT_EQ(take(), Calls{});
  popover->performClose(nullptr);
  popover->performClose(nullptr);
  EXPECT_EQ(take(), (Calls{"viewWillDisappear", "viewDidDisappear"}));
  show();
  EXPECT_EQ(take(), (Calls{"viewWillAppear", "viewDidAppear"}));
  EXPECT_EQ(desk.log.calls(), (Calls{"window.show", "window.show", "window.hide", "window.show"}));
}

}  // namespace
}  // namespace platform
