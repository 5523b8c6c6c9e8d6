#include <QAccessible>

#include "desktop/ui/PanelTest.h"

namespace linux_desktop {
namespace {

using ui_test::PanelTest;

class PanelInputTest : public PanelTest {};

TEST_F(PanelInputTest, TabReachesEverySwitchAndSpaceFlipsIt) {
  show();
  for (const auto& toggle : {first, second}) {
    key(Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), widgetOf(*toggle));
    key(Qt::Key_Space, QTest::Press);
    EXPECT_FALSE(toggle->isOn());
    EXPECT_EQ(toggle->circle()->frame().width, 15) << "held down";
    key(Qt::Key_Space, QTest::Release);
    EXPECT_TRUE(toggle->isOn());
    EXPECT_EQ(toggle->circle()->frame().width, 12);
  }
  key(Qt::Key_Backtab);
  EXPECT_EQ(QApplication::focusWidget(), widgetOf(*first));
}

TEST_F(PanelInputTest, FocusIsSeenWhenTheKeyboardBroughtItAndNotAfterAClick) {
  show();
  QWidget& widget = *widgetOf(*first);
  const QImage calm = widget.grab().toImage();
  widget.setFocus(Qt::MouseFocusReason);
  EXPECT_EQ(widget.grab().toImage(), calm);
  widget.clearFocus();
  key(Qt::Key_Tab);
  EXPECT_NE(widget.grab().toImage(), calm);
}

TEST_F(PanelInputTest, PressThatIsLetGoOutsideIsReleased) {
  show();
  QWidget* widget = widgetOf(*first);
  QTest::mousePress(widget, Qt::LeftButton);
  EXPECT_EQ(first->circle()->frame().width, 15);
  QTest::mouseRelease(widget, Qt::LeftButton, Qt::NoModifier, QPoint(-200, -200));
  EXPECT_TRUE(first->isOn());
  QTest::mouseClick(widget, Qt::RightButton);
  EXPECT_TRUE(first->isOn());
  QTest::mouseDClick(widget, Qt::LeftButton);
  EXPECT_TRUE(first->isOn()) << "two clicks are two flips";
}

TEST_F(PanelInputTest, PressIsReleasedWhenThePanelGoesOrTheFocusMovesOn) {
  show();
  key(Qt::Key_Tab);
  key(Qt::Key_Space, QTest::Press);
  key(Qt::Key_Tab);
  EXPECT_TRUE(first->isOn());
  QTest::mousePress(widgetOf(*second), Qt::LeftButton);
  window->orderOut(nullptr);
  EXPECT_FALSE(second->isOn()) << "nothing is reported from inside a call";
  EXPECT_TRUE(until([this] { return second->isOn(); }));
}

TEST_F(PanelInputTest, SwitchWithoutKeyboardIsPassedOver) {
  first->statetag = -1;
  show();
  key(Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), widgetOf(*second));
}

TEST_F(PanelInputTest, EscapeAndTheTitleBarAskTheModelToClose) {
  show();
  key(Qt::Key_Escape);
  EXPECT_EQ(closes, 1);
  key(Qt::Key_Tab);
  key(Qt::Key_Escape);
  EXPECT_EQ(closes, 2);
  shown()->close();
  EXPECT_EQ(closes, 3);
  ASSERT_NE(shown(), nullptr);
}

// --- Assistive technology ---

TEST_F(PanelInputTest, ScreenReaderIsToldNameHelpAndStateAndCanFlip) {
  show();
  QAccessibleInterface& reader = *QAccessible::queryAccessibleInterface(widgetOf(*first));
  EXPECT_EQ(reader.role(), QAccessible::CheckBox);
  EXPECT_EQ(reader.text(QAccessible::Name), QStringLiteral("Mute"));
  EXPECT_EQ(reader.text(QAccessible::Description), QStringLiteral("Mutes the speaker"));
  EXPECT_TRUE(reader.state().checkable && reader.state().focusable);
  EXPECT_FALSE(reader.state().checked);
  ASSERT_TRUE(
      reader.actionInterface()->actionNames().contains(QAccessibleActionInterface::toggleAction()));
  reader.actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
  EXPECT_TRUE(first->isOn());
  EXPECT_TRUE(reader.state().checked);
  reader.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_FALSE(first->isOn());
}

}  // namespace
}  // namespace linux_desktop
