#include "desktop/linux/ui/QtDialogs.h"

#include <QAbstractButton>
#include <QMessageBox>

#include "desktop/ui/PanelTest.h"

namespace linux_desktop {
namespace {

using ui_test::PanelTest;

class QtAlertTest : public PanelTest {
 protected:
  QtAlertTest() {
    alert.setMessageText("Fish & chips <b>?");
    alert.addButtonWithTitle("Yes");
    alert.addButtonWithTitle("Later");
    alert.addButtonWithTitle("No");
  }

  void ask() {
    peer = windows.showAlert(alert, [this](std::size_t button) {
      answers.push_back(button);
      peer.reset();
    });
    EXPECT_TRUE(until([] { return box() != nullptr && box()->isActiveWindow(); }));
  }

  static QMessageBox* box() {
    return qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
  }

  platform::NSAlert alert;
  std::unique_ptr<platform::port::Windows::ModalPeer> peer;
  std::vector<std::size_t> answers;
};

TEST_F(QtAlertTest, KeyboardAnswersWithTheFirstButtonAndEscapeWithTheLast) {
  ask();
  EXPECT_EQ(box()->windowTitle(), QStringLiteral("Calmdeck"));
  EXPECT_EQ(box()->text(), QStringLiteral("Fish & chips <b>?"));
  QTest::keyClick(box(), Qt::Key_Return);
  EXPECT_EQ(answers, std::vector<std::size_t>{0});
  ask();
  QTest::keyClick(box(), Qt::Key_Escape);
  EXPECT_EQ(answers, (std::vector<std::size_t>{0, 2}));
  ask();
  QTest::mouseClick(box()->buttons().at(1), Qt::LeftButton);
  EXPECT_EQ(answers, (std::vector<std::size_t>{0, 2, 1}));
  EXPECT_EQ(box(), nullptr);
}

TEST_F(QtAlertTest, WritesAShortcutAsItsKeysAreLabelled) {
  alert.setInformativeText("Not available: ⌃⌥p");
  ask();
  EXPECT_EQ(box()->informativeText(), QStringLiteral("Not available: Ctrl+Alt+P"));
}

TEST_F(QtAlertTest, OneThatIsTakenAwayAnswersNothing) {
  ask();
  peer.reset();
  settle();
  EXPECT_EQ(box(), nullptr);
  EXPECT_TRUE(answers.empty());
}

TEST_F(QtAlertTest, PanelBehindItTakesNoInputAndIsNotLeft) {
  show();
  ask();
  EXPECT_TRUE(until([this] { return !window->isKeyWindow(); }));
  QTest::mouseClick(shown()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                    widgetOf(*first)->geometry().center());
  EXPECT_FALSE(first->isOn());
  EXPECT_EQ(actsElsewhere, 0);
  QTest::keyClick(box(), Qt::Key_Return);
  settle();
  EXPECT_EQ(actsElsewhere, 0);
  ASSERT_NE(shown(), nullptr);
}

TEST_F(QtAlertTest, SheetStopsItsOwnWindowAndNoOther) {
  item.shown = false;
  show();
  platform::NSWindow other(platform::NSWindowStyle::Titled);
  other.setContentView(ui_test::make<platform::NSTextField>({{"text", "General"}}));
  struct Client final : platform::port::WindowClient {
    void windowDidBecomeKey() override {}
    void windowDidResignKey() override {}
    void windowShouldClose() override { ++closes; }
    void userActedElsewhere() override {}
    void mouseDown(platform::NSView&, const platform::NSEvent&) override {}
    void mouseUp(platform::NSView&, const platform::NSEvent&) override {}
    void keyDown(const platform::NSEvent&) override { ++presses; }
    int closes = 0;
    int presses = 0;
  } client;
  const auto peerOfOther = windows.createWindow(other, client);
  QWidget* waiting = nullptr;
  QWidget* panelWindow = shown();
  const QPoint middleOfSwitch = widgetOf(*first)->geometry().center();
  peerOfOther->show(platform::port::PlacedByDesktop{});
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (widget->isVisible() && widget != panelWindow) waiting = widget;
  }
  ASSERT_NE(waiting, nullptr);

  peer = windows.showSheet(alert, *peerOfOther, [this](std::size_t button) {
    answers.push_back(button);
    peer.reset();
  });
  ASSERT_TRUE(until([] { return box() != nullptr && box()->isActiveWindow(); }));
  EXPECT_EQ(box()->windowHandle()->transientParent(), waiting->windowHandle());
  QTest::keyClick(waiting->windowHandle(), Qt::Key_A);
  EXPECT_EQ(client.presses, 0);
  QTest::mouseClick(panelWindow->windowHandle(), Qt::LeftButton, Qt::NoModifier, middleOfSwitch);
  EXPECT_TRUE(first->isOn());
  QTest::keyClick(box(), Qt::Key_Return);
  EXPECT_EQ(answers, std::vector<std::size_t>{0});
  EXPECT_TRUE(until([&] { return waiting->isActiveWindow(); }));
  QTest::keyClick(waiting->windowHandle(), Qt::Key_A);
  EXPECT_EQ(client.presses, 1);
}

}  // namespace
}  // namespace linux_desktop
