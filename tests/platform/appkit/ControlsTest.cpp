#include <gtest/gtest.h>

#include <array>

#include "platform/appkit/NSBox.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSOpenPanel.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSWindow.h"
#include "support/Attributes.h"
#include "support/DeskTest.h"
#include "support/Listener.h"

namespace platform {
namespace {

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

}  // namespace
}  // namespace platform
