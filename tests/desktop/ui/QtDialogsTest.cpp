#include "desktop/linux/ui/QtDialogs.h"

#include <QAbstractButton>
#include <QFileDialog>
#include <QMessageBox>

#include "desktop/ui/TitledTest.h"
#include "platform/appkit/NSAlert.h"

namespace linux_desktop {
namespace {

using ui_test::TitledTest;

/// A titled window, and beside it a panel at the status item with a switch.
class QtDialogsTest : public TitledTest {
 protected:
  QtDialogsTest() {
    panel->setContentView(toggle);
    panel->setDelegate(this);
  }
  ~QtDialogsTest() override { panel->orderOut(nullptr); }

  void userActedElsewhere() override { ++actsElsewhere; }

  void showPanel() {
    present(*panel, platform::port::PlacedAtStatusItem{&item});
    panelWindow = QApplication::activeWindow();
  }
  [[nodiscard]] bool clickTurnsTheSwitch() {
    const bool before = toggle->isOn();
    QTest::mouseClick(panelWindow->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      panelWindow->rect().center());
    return toggle->isOn() != before;
  }
  /// The one that shows; null while none does.
  template <class Dialog>
  static Dialog* dialog() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* found = qobject_cast<Dialog*>(widget);
      if (found != nullptr && found->isVisible() && found->isActiveWindow()) return found;
    }
    return nullptr;
  }
  template <class Dialog>
  [[nodiscard]] bool comes() {
    return until([] { return dialog<Dialog>() != nullptr; });
  }

  ui_test::TestStatusItem item;
  std::shared_ptr<controls::CToggleButton> toggle = ui_test::make<controls::CToggleButton>({});
  std::shared_ptr<platform::NSWindow> panel =
      std::make_shared<platform::NSWindow>(platform::NSWindowStyle::Popover);
  QWidget* panelWindow = nullptr;
  std::unique_ptr<platform::port::Windows::ModalPeer> peer;
  std::vector<std::string> answers;
  int actsElsewhere = 0;
};

class QtAlertTest : public QtDialogsTest {
 protected:
  QtAlertTest() {
    alert.setMessageText("Fish & chips <b>?");
    alert.setInformativeText("Not available: ⌃⌥p");
    for (const char* title : {"Yes", "Later", "No"}) alert.addButtonWithTitle(title);
  }

  void ask() {
    peer = windows.showAlert(alert, [this](std::size_t index) {
      answers.push_back(alert.buttonTitles().at(index));
      peer.reset();
    });
    ASSERT_TRUE(comes<QMessageBox>());
  }
  static QMessageBox* box() { return dialog<QMessageBox>(); }

  platform::NSAlert alert;
};

TEST_F(QtAlertTest, KeyboardAnswersWithTheFirstButtonAndEscapeWithTheLast) {
  ask();
  EXPECT_EQ(box()->windowTitle(), QStringLiteral("Calmdeck"));
  EXPECT_EQ(box()->text(), QStringLiteral("Fish & chips <b>?"));
  EXPECT_EQ(box()->informativeText(), QStringLiteral("Not available: Ctrl+Alt+P"));
  QTest::keyClick(box(), Qt::Key_Return);
  ask();
  QTest::keyClick(box(), Qt::Key_Escape);
  ask();
  QTest::mouseClick(box()->buttons().at(1), Qt::LeftButton);
  ask();
  peer.reset();  // taken away, it answers nothing
  settle();
  EXPECT_EQ(answers, (std::vector<std::string>{"Yes", "No", "Later"}));
  EXPECT_EQ(box(), nullptr);
}

TEST_F(QtAlertTest, PanelBehindItTakesNoInputAndIsNotLeft) {
  showPanel();
  ask();
  EXPECT_TRUE(until([this] { return !panel->isKeyWindow(); }));
  EXPECT_FALSE(clickTurnsTheSwitch());
  QTest::keyClick(box(), Qt::Key_Return);
  settle();
  EXPECT_EQ(actsElsewhere, 0);
  EXPECT_TRUE(panelWindow->isVisible());
}

TEST_F(QtAlertTest, PanelThatComesInFrontOfItIsLeftForIt) {
  ask();
  QMessageBox& behind = *box();
  showPanel();
  behind.activateWindow();
  EXPECT_TRUE(until([this] { return actsElsewhere == 1; }));
}

TEST_F(QtAlertTest, SheetStopsItsOwnWindowAndNoOther) {
  item.shown = false;
  showPanel();
  show();
  QWindow* waiting = QApplication::activeWindow()->windowHandle();
  alert.beginSheetModalForWindow(
      *window, [this](int response) { answers.push_back(std::to_string(response)); });
  ASSERT_TRUE(comes<QMessageBox>());
  EXPECT_EQ(box()->windowHandle()->transientParent(), waiting);
  QTest::keyClick(waiting, Qt::Key_A);
  EXPECT_TRUE(keys->presses.empty());
  EXPECT_TRUE(clickTurnsTheSwitch());
  QTest::keyClick(box(), Qt::Key_Return);
  EXPECT_TRUE(until([&] { return waiting->isActive(); }));
  EXPECT_EQ(answers, std::vector<std::string>{"1000"});
  QTest::keyClick(waiting, Qt::Key_A);
  EXPECT_EQ(keys->presses.size(), 1U);
}

TEST_F(QtDialogsTest, FileDialogStopsTheTitledWindowAndNoPanelBesideItOrInFront) {
  show();
  QWindow* waiting = QApplication::activeWindow()->windowHandle();
  item.shown = false;
  showPanel();
  const platform::NSOpenPanel choice;
  peer = windows.showOpenPanel(choice, [this](const auto&) { peer.reset(); });
  ASSERT_TRUE(comes<QFileDialog>());
  QFileDialog& asking = *dialog<QFileDialog>();
  QTest::keyClick(waiting, Qt::Key_A);
  EXPECT_TRUE(keys->presses.empty());
  EXPECT_TRUE(clickTurnsTheSwitch());
  panel->orderOut(nullptr);
  item.shown = true;
  showPanel();
  EXPECT_TRUE(clickTurnsTheSwitch());
  EXPECT_EQ(actsElsewhere, 0);
  window->makeKeyWindow();
  EXPECT_TRUE(until([&] { return asking.isActiveWindow() && actsElsewhere == 1; }));
  QTest::keyClick(&asking, Qt::Key_Escape);
  EXPECT_TRUE(until([&] { return waiting->isActive(); }));
}

}  // namespace
}  // namespace linux_desktop
