#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSBox.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSOpenPanel.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSWindow.h"
#include "platform/appkit/NSWindowController.h"
#include "support/DeskTest.h"

namespace platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Calls = std::vector<std::string>;
using tests::Attributes;

class ControlsTest : public tests::DeskTest {
 protected:
  template <typename View>
  void show(const std::shared_ptr<View>& view) {
    window->setContentView(view);
    window->show(port::PlacedByDesktop{});
    desk.loop.settle();
    updates_ = desk.screen.updates();
  }
  /// How often the window was told of changes since this was last asked.
  int newUpdates() {
    desk.loop.settle();
    const int before = updates_;
    updates_ = desk.screen.updates();
    return updates_ - before;
  }
  void click(NSView& view) {
    desk.screen.press(view);
    desk.screen.release(view);
  }

  std::shared_ptr<NSWindow> window = std::make_shared<NSWindow>(NSWindowStyle::Titled);

 private:
  int updates_ = 0;
};

TEST_F(ControlsTest, AClickedButtonSendsItsActionOnceAndHasNoState) {
  const auto button =
      NSButton::initWithCoder(Attributes{{"title", "Record"}, {"action", "called"}});
  ASSERT_TRUE(button);
  EXPECT_EQ(button->title(), "Record");
  EXPECT_EQ(button->kind(), NSViewKind::Button);
  EXPECT_EQ(button->accessibilityRole(), NSAccessibilityRole::Button);
  EXPECT_TRUE(button->acceptsFirstResponder());
  const auto target = std::make_shared<tests::Listener>();
  button->setTarget(target);
  show(button);
  desk.screen.press(*button);
  EXPECT_EQ(target->calls, 0);
  desk.screen.release(*button);
  EXPECT_EQ(target->calls, 1);
  EXPECT_EQ(button->state(), NSControlStateValue::Off);
  EXPECT_EQ(button->accessibilityValue(), std::nullopt);
  EXPECT_EQ(newUpdates(), 0);
  button->setTitle("Stop");
  EXPECT_EQ(newUpdates(), 1);
}

TEST_F(ControlsTest, ACheckboxFlipsBeforeItsActionAndSettingItSendsNone) {
  const auto box = NSButton::checkboxWithCoder(Attributes{{"action", "called"}});
  ASSERT_TRUE(box);
  EXPECT_EQ(box->kind(), NSViewKind::Checkbox);
  EXPECT_EQ(box->accessibilityRole(), NSAccessibilityRole::CheckBox);
  const auto target = std::make_shared<tests::Listener>();
  box->setTarget(target);
  show(box);
  click(*box);
  EXPECT_EQ(box->state(), NSControlStateValue::On);
  EXPECT_EQ(box->accessibilityValue(), std::optional(true));
  EXPECT_EQ(target->calls, 1);
  EXPECT_EQ(newUpdates(), 1);
  box->setState(NSControlStateValue::Off);
  box->setState(NSControlStateValue::Off);
  EXPECT_EQ(newUpdates(), 1);
  EXPECT_EQ(box->accessibilityValue(), std::optional(false));
  EXPECT_EQ(target->calls, 1);
}

TEST_F(ControlsTest, AButtonWithoutAnActionDoesNothing) {
  const auto button = NSButton::initWithCoder(Attributes());
  show(button);
  click(*button);
  EXPECT_EQ(newUpdates(), 0);
}

TEST_F(ControlsTest, ABoxTellsOfItsBorder) {
  const auto box = NSBox::initWithCoder(Attributes{{"borderColor", "#0000ff"}});
  ASSERT_TRUE(box);
  EXPECT_EQ(box->borderColor(), NSColor::blueColor());
  show(box);
  box->setBorderColor(NSColor::blueColor());
  EXPECT_EQ(newUpdates(), 0);
  box->setBorderColor(NSColor::grayColor());
  EXPECT_EQ(newUpdates(), 1);
}

TEST_F(ControlsTest, ALabelKnowsWhatItsTextIs) {
  EXPECT_EQ(NSTextField::initWithCoder(Attributes())->content(), NSTextContent::Text);
  EXPECT_EQ(NSTextField::initWithCoder(Attributes{{"content", "filePath"}})->content(),
            NSTextContent::FilePath);
}

TEST_F(ControlsTest, AnOpenPanelEndsWithTheProgram) {
  NSOpenPanel panel;
  desk.loop.run();
  desk.loop.whenWaiting([this] { desk.loop.terminate(); });
  EXPECT_EQ(panel.runModal(), NSModalResponse::Cancel);
  EXPECT_FALSE(desk.screen.openPanel());
}

/// Both note in one list what they are told.
class Content final : public NSViewController {
 public:
  explicit Content(Calls& told) : told_(told) {}
  void viewDidLoad() override { told_.emplace_back("viewDidLoad"); }
  void viewWillAppear() override { told_.emplace_back("viewWillAppear"); }
  void viewDidAppear() override { told_.emplace_back("viewDidAppear"); }
  void viewWillDisappear() override { told_.emplace_back("viewWillDisappear"); }
  void viewDidDisappear() override { told_.emplace_back("viewDidDisappear"); }

 private:
  Calls& told_;
};

class Controller final : public NSWindowController {
 public:
  explicit Controller(Calls& told) : told_(told) {}
  bool readTitle(std::string title) { return decode(tests::Attributes{{"title", title}}); }
  void windowDidLoad() override { told_.emplace_back("windowDidLoad"); }

 private:
  Calls& told_;
};

class WindowControllerTest : public tests::DeskTest {
 protected:
  WindowControllerTest() {
    EXPECT_TRUE(controller->readTitle("Preferences"));
    controller->setLoader([this] {
      auto content = std::make_shared<Content>(told);
      content->setLoader([](NSViewController&) { return std::make_shared<NSView>(); });
      return content;
    });
  }
  ~WindowControllerTest() override {
    EXPECT_EQ(controller.use_count(), 1);
    controller.reset();
    EXPECT_EQ(desk.screen.windowCount(), 0U);
    EXPECT_THAT(desk.screen.alerts(), IsEmpty());
  }
  Calls toldBy(const std::function<void()>& act) {
    told.clear();
    act();
    desk.loop.settle();
    return told;
  }
  void beginSheet(const std::string& text) {
    NSAlert alert;
    alert.setMessageText(text);
    alert.addButtonWithTitle("OK");
    alert.addButtonWithTitle("Cancel");
    alert.beginSheetModalForWindow(*controller->window(), [this, text](int response) {
      told.push_back(text + " " + std::to_string(response));
      if (onAnswer) std::exchange(onAnswer, nullptr)();
    });
  }
  Calls sheets() {
    desk.loop.settle();
    Calls texts;
    for (const auto& alert : desk.screen.alerts()) {
      EXPECT_TRUE(alert.isSheet);
      texts.push_back(alert.message);
    }
    return texts;
  }

  Calls told;
  std::function<void()> onAnswer;
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
  EXPECT_EQ(window->windowController(), controller);
  EXPECT_TRUE(window->isKeyWindow());
  EXPECT_THAT(toldBy([this] { desk.screen.escape(); }),
              ElementsAre("viewWillDisappear", "viewDidDisappear"));
  EXPECT_FALSE(window->isVisible());
  EXPECT_THAT(toldBy([this] { controller->close(); }), IsEmpty());
  EXPECT_THAT(toldBy([this] { controller->showWindow(nullptr); }),
              ElementsAre("viewWillAppear", "viewDidAppear"));
  EXPECT_EQ(controller->window(), window);
}

TEST_F(WindowControllerTest, AWindowMayOutliveItsController) {
  controller->showWindow(nullptr);
  const std::shared_ptr<NSWindow> window = controller->window();
  controller = std::make_shared<Controller>(told);
  EXPECT_THAT(toldBy([this] { desk.screen.escape(); }), IsEmpty());
  EXPECT_EQ(window->windowController(), nullptr);
}

TEST_F(WindowControllerTest, SheetsWaitForEachOther) {
  controller->showWindow(nullptr);
  for (const char* text : {"first", "second"}) beginSheet(text);
  onAnswer = [this] { beginSheet("third"); };
  for (const char* text : {"first", "second", "third"}) {
    ASSERT_THAT(sheets(), ElementsAre(text));
    EXPECT_THAT(toldBy([this] { desk.screen.answerAlert(1); }),
                ElementsAre(std::string(text) + " 1001"));
  }
  EXPECT_THAT(sheets(), IsEmpty());
}

TEST_F(WindowControllerTest, ASheetKeepsTheUserFromClosingAndFollowsItsWindow) {
  beginSheet("first");
  EXPECT_THAT(sheets(), ElementsAre("first"));
  EXPECT_THAT(toldBy([this] { desk.screen.escape(); }), IsEmpty());
  controller->close();
  EXPECT_THAT(sheets(), IsEmpty());
  controller->showWindow(nullptr);
  EXPECT_THAT(sheets(), ElementsAre("first"));
}

TEST_F(WindowControllerTest, AnAnswerCountsAlsoWhenTheWindowGoesMeanwhile) {
  beginSheet("first");
  EXPECT_THAT(sheets(), ElementsAre("first"));
  EXPECT_THAT(toldBy([this] {
                desk.screen.answerAlert(0);
                controller->close();
                controller->showWindow(nullptr);
              }),
              testing::Contains("first 1000"));
  EXPECT_THAT(sheets(), IsEmpty());
}

}  // namespace
}  // namespace platform
