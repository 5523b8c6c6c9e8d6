#include "desktop/ui/TitledTest.h"

namespace linux_desktop {
namespace {

using ui_test::TitledTest;
using Bits = platform::NSEventModifierFlags;

class TitledKeysTest : public TitledTest {
 protected:
  void focus(const platform::NSView& view) { widgetOf(view).setFocus(Qt::TabFocusReason); }
  [[nodiscard]] bool lastWas(Qt::Key key, std::uint32_t flags) const {
    return !keys->presses.empty() &&
           keys->presses.back().keyCode == static_cast<std::uint16_t>(key) &&
           keys->presses.back().modifierFlags == flags;
  }
};

TEST_F(TitledKeysTest, WindowHasATitleAndEscapeDoesNotCloseIt) {
  show();
  EXPECT_EQ(shown()->windowTitle(), QStringLiteral("Preferences"));
  EXPECT_FALSE(shown()->windowFlags().testFlag(Qt::FramelessWindowHint));
  EXPECT_FALSE(shown()->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
  key(Qt::Key_Escape);
  EXPECT_TRUE(lastWas(Qt::Key_Escape, 0));
  EXPECT_EQ(closes, 0);
  shown()->close();
  EXPECT_EQ(closes, 1);
  EXPECT_NE(shown(), nullptr) << "the model closes it";
}

TEST_F(TitledKeysTest, EveryKeyIsReportedThatNoControlNeeds) {
  show();
  for (const auto& view : {std::static_pointer_cast<platform::NSView>(button),
                           std::static_pointer_cast<platform::NSView>(checkbox)}) {
    focus(*view);
    for (const Qt::Key plain : {Qt::Key_A, Qt::Key_Left, Qt::Key_Down, Qt::Key_F10, Qt::Key_Menu}) {
      key(plain);
      EXPECT_TRUE(lastWas(plain, 0)) << plain;
    }
    EXPECT_EQ(QApplication::focusWidget(), &widgetOf(*view)) << "arrows leave the focus";
  }
  key(Qt::Key_Return);
  EXPECT_TRUE(lastWas(Qt::Key_Return, 0)) << "means nothing to a checkbox";
  shown()->setFocus();
  key(Qt::Key_Space);
  EXPECT_TRUE(lastWas(Qt::Key_Space, 0)) << "means nothing to the window";
  EXPECT_EQ(keys->presses.size(), 12U);
}

TEST_F(TitledKeysTest, ControlsKeepTheirKeysAndLoseThemToModifiers) {
  show();
  const struct {
    Qt::KeyboardModifier modifier;
    std::uint32_t flag;
  } rows[] = {{Qt::ControlModifier, Bits::Control},
              {Qt::ShiftModifier, Bits::Shift},
              {Qt::AltModifier, Bits::Option},
              {Qt::MetaModifier, Bits::Command}};
  key(Qt::Key_Tab);
  ASSERT_EQ(QApplication::focusWidget(), &widgetOf(*button));
  key(Qt::Key_Tab);
  ASSERT_EQ(QApplication::focusWidget(), &widgetOf(*checkbox));
  EXPECT_TRUE(keys->presses.empty());
  key(Qt::Key_Backtab, Qt::ShiftModifier);
  ASSERT_EQ(QApplication::focusWidget(), &widgetOf(*button));
  EXPECT_TRUE(lastWas(Qt::Key_Backtab, Bits::Shift)) << "it goes back, and is a combination";
  for (const auto& row : rows) {
    for (const Qt::Key needed : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Tab}) {
      if (needed == Qt::Key_Tab && row.modifier == Qt::ShiftModifier) continue;
      key(needed, row.modifier);
      EXPECT_TRUE(lastWas(needed, row.flag)) << needed;
    }
  }
  EXPECT_EQ(keys->buttonPresses, 0);
  EXPECT_EQ(QApplication::focusWidget(), &widgetOf(*button));
}

TEST_F(TitledKeysTest, NoLetterOfATitleIsAShortcut) {
  show();
  key(Qt::Key_R, Qt::AltModifier);
  EXPECT_TRUE(lastWas(Qt::Key_R, Bits::Option));
  EXPECT_EQ(keys->buttonPresses, 0);
}

TEST_F(TitledKeysTest, ModifiersAloneAndRepeatsAreNotReported) {
  show();
  focus(*button);
  key(Qt::Key_Control);
  QKeyEvent repeat(QEvent::KeyPress, Qt::Key_A, Qt::ControlModifier, QString(), true);
  QCoreApplication::sendEvent(shown()->windowHandle(), &repeat);
  QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
  QCoreApplication::sendEvent(shown()->windowHandle(), &held);
  EXPECT_TRUE(keys->presses.empty());
  EXPECT_EQ(keys->buttonPresses, 0);

  // As Qt has it of a held key when the press arrives late.
  constexpr quint32 kPlace = 38;
  const auto send = [](QEvent::Type type, quint64 time) {
    QKeyEvent event(type, Qt::Key_A, Qt::ControlModifier, kPlace, 0, 0);
    event.setTimestamp(time);
    QCoreApplication::sendEvent(shown()->windowHandle(), &event);
  };
  send(QEvent::KeyPress, 1000);
  for (const quint64 time : {1660U, 1700U, 1740U}) {
    send(QEvent::KeyRelease, time);
    send(QEvent::KeyPress, time);
  }
  EXPECT_EQ(keys->presses.size(), 1U);
  send(QEvent::KeyRelease, 1800);
  send(QEvent::KeyPress, 1900);
  EXPECT_EQ(keys->presses.size(), 2U);
}

}  // namespace
}  // namespace linux_desktop
