#include <gtest/gtest.h>

#include "platform/appkit/NSWindowController.h"
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
  window->setContentView(elsewhere);
  EXPECT_EQ(view->window(), nullptr);
  EXPECT_EQ(inner->window(), window.get());
  window = std::make_shared<NSWindow>(NSWindowStyle::Titled);
  EXPECT_EQ(inner->window(), nullptr);
  inner->setHidden(true);
}

TEST_F(WindowTest, ContentFillsABorderlessWindowWhereverItGoes) {
  const auto screen = std::make_shared<NSScreen>(port::ScreenInfo{"B", {1280, 120, 1024, 600}, 1});
  window = std::make_shared<NSWindow>(NSRect{10, 20, 300, 200}, NSWindowStyle::Borderless,
                                      NSBackingStoreType::Buffered, true, *screen);
  EXPECT_EQ(window->frame(), (NSRect{1290, 140, 300, 200}));
  window->setContentView(view);
  EXPECT_EQ(view->frame(), (NSRect{0, 0, 300, 200}));
  window->orderBack(nullptr);
  for (int i = 0; i < 2; ++i) window->setFrame({0, 0, 640, 480}, false, false);
  EXPECT_EQ(view->frame(), (NSRect{0, 0, 640, 480}));
  desk.loop.settle();
  EXPECT_EQ(desk.log.calls("window.update"), (Calls{"window.update 0 0 640 480"}));
}

TEST_F(WindowTest, OnlyAVisibleWindowAsksForTheKeyboard) {
  window->makeKeyWindow();
  show();
  window->makeKeyWindow();
  // What is gone by the time that the desktop agrees has it not.
  window->orderOut(nullptr);
  window->makeKeyWindow();
  desk.loop.settle();
  EXPECT_FALSE(window->isKeyWindow());
  EXPECT_EQ(desk.log.calls(), (Calls{"window.show", "window.makeKey", "window.hide"}));
}

TEST_F(WindowTest, ItMayOutliveItsController) {
  const auto content = std::make_shared<NSViewController>();
  content->setLoader([](NSViewController&) { return std::make_shared<NSView>(); });
  auto controller = std::make_shared<NSWindowController>();
  controller->setLoader([&content] { return content; });
  controller->showWindow(nullptr);
  desk.loop.settle();
  window = controller->window();
  controller.reset();
  desk.screen.escape();
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(window->windowController(), nullptr);
}

}  // namespace
}  // namespace platform
