#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSWindowController.h"
#include "support/DeskTest.h"

namespace platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Calls = std::vector<std::string>;
using tests::Attributes;
using tests::Content;

class ControlsTest : public tests::DeskTest {
 protected:
  /// How often the window was told of changes while `act` ran, and in the turn that ended it.
  int updatesBy(const std::function<void()>& act) {
    const int before = desk.screen.updates();
    act();
    desk.loop.settle();
    return desk.screen.updates() - before;
  }
  void show(const std::shared_ptr<NSView>& view) {
    window->setContentView(view);
    window->show(port::PlacedByDesktop{});
    desk.loop.settle();
  }

  std::shared_ptr<NSWindow> window = std::make_shared<NSWindow>(NSWindowStyle::Titled);
};

TEST_F(ControlsTest, ACheckboxFlipsBeforeItsActionAndSettingItSendsNone) {
  const auto box = objectFromCoder<NSCheckbox>(Attributes{{"action", "called"}});
  const auto target = std::make_shared<tests::Listener>();
  box->setTarget(target);
  show(box);
  EXPECT_EQ(updatesBy([&] {
              desk.screen.press(*box);
              EXPECT_EQ(target->calls, 0);
              desk.screen.release(*box);
            }),
            1);
  EXPECT_EQ(box->state(), NSControlStateValue::On);
  EXPECT_EQ(box->accessibilityValue(), std::optional(true));
  EXPECT_EQ(updatesBy([&] {
              box->setState(NSControlStateValue::Off);
              box->setState(NSControlStateValue::Off);
            }),
            1);
  EXPECT_EQ(box->accessibilityValue(), std::optional(false));
  EXPECT_EQ(target->calls, 1);
}

TEST_F(ControlsTest, TheWindowIsToldOfATitleAndABorder) {
  const auto button = objectFromCoder<NSButton>(Attributes{{"title", "Record"}});
  show(button);
  EXPECT_EQ(updatesBy([&] { button->setTitle("Stop"); }), 1);
  const auto box = objectFromCoder<NSBox>(Attributes{{"borderColor", "#0000ff"}});
  show(box);
  EXPECT_EQ(updatesBy([&] { box->setBorderColor(NSColor::blueColor()); }), 0);
  EXPECT_EQ(updatesBy([&] { box->setBorderColor(NSColor::grayColor()); }), 1);
}

class Controller final : public NSWindowController {
 public:
  explicit Controller(Calls& told) : told_(told) {}
  bool readTitle(std::string title) { return initWithCoder(Attributes{{"title", title}}); }
  void windowDidLoad() override { told_.emplace_back("windowDidLoad"); }

 private:
  Calls& told_;
};

class WindowControllerTest : public tests::DeskTest {
 protected:
  WindowControllerTest() {
    EXPECT_TRUE(controller->readTitle("Preferences"));
    controller->setLoader([this] { return std::make_shared<Content>(told); });
  }
  Calls toldBy(const std::function<void()>& act) {
    told.clear();
    act();
    desk.loop.settle();
    return told;
  }

  Calls told;
  std::shared_ptr<Controller> controller = std::make_shared<Controller>(told);
};

TEST_F(WindowControllerTest, TheContentHearsOfEveryComingAndGoing) {
  desk.log.witness = [this](const std::string& call) { told.push_back(call); };
  EXPECT_THAT(toldBy([this] { controller->showWindow(nullptr); }),
              ElementsAre("viewDidLoad", "windowDidLoad", "viewWillAppear", "window.show",
                          "viewDidAppear", "window.makeKey"));
  desk.log.witness = nullptr;
  const std::shared_ptr<NSWindow> window = controller->window();
  EXPECT_EQ(window->title(), "Preferences");
  EXPECT_TRUE(window->isKeyWindow());
  EXPECT_THAT(toldBy([this] { desk.screen.escape(); }),
              ElementsAre("viewWillDisappear", "viewDidDisappear"));
  EXPECT_FALSE(window->isVisible());
  EXPECT_THAT(toldBy([this] { controller->close(); }), IsEmpty());
  EXPECT_THAT(toldBy([this] { controller->showWindow(nullptr); }),
              ElementsAre("viewWillAppear", "viewDidAppear"));
  EXPECT_EQ(controller->window(), window);
  // It may outlive its controller.
  controller = std::make_shared<Controller>(told);
  EXPECT_THAT(toldBy([this] { desk.screen.escape(); }), IsEmpty());
  EXPECT_EQ(window->windowController(), nullptr);
}

}  // namespace
}  // namespace platform
