#include <gmock/gmock.h>

#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSWindowController.h"
#include "support/Attributes.h"
#include "support/DeskTest.h"

namespace platform {
namespace {

using Calls = std::vector<std::string>;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

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
