#include <QCheckBox>
#include <QLabel>
#include <QPushButton>

#include "desktop/linux/ui/Theme.h"
#include "desktop/ui/TitledTest.h"

namespace linux_desktop {
namespace {

using platform::NSColor;
using platform::NSControlStateValue;
using ui_test::TitledTest;
using Bits = platform::NSEventModifierFlags;

class ControlWidgetsTest : public TitledTest {
 protected:
  void focus(const platform::NSView& view) { widgetOf(view).setFocus(Qt::TabFocusReason); }
  [[nodiscard]] bool lastWas(Qt::Key key, std::uint32_t flags) const {
    return !keys->presses.empty() &&
           keys->presses.back().keyCode == static_cast<std::uint16_t>(key) &&
           keys->presses.back().modifierFlags == flags;
  }
  [[nodiscard]] bool isOn() const { return checkbox->state() == NSControlStateValue::On; }
};

/// The colour of most of a widget's pixels in one of its columns or rows.
QColor edgeOf(QWidget& widget) {
  return widget.grab().toImage().pixelColor(widget.width() / 2, 1);
}

TEST_F(ControlWidgetsTest, ButtonIsPressedOnceByTheMouseTheKeyboardAndAScreenReader) {
  show();
  auto& shownButton = widgetOf<QPushButton>(*button);
  QTest::mouseClick(&shownButton, Qt::LeftButton);
  EXPECT_EQ(keys->buttonPresses, 1);
  QTest::mousePress(&shownButton, Qt::LeftButton);
  QTest::mouseRelease(&shownButton, Qt::LeftButton, Qt::NoModifier, QPoint(-200, -200));
  EXPECT_EQ(keys->buttonPresses, 1) << "let go elsewhere";
  shownButton.setFocus(Qt::TabFocusReason);
  key(Qt::Key_Space);
  key(Qt::Key_Return);
  EXPECT_EQ(keys->buttonPresses, 3);
  readerOf(*button).actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_TRUE(until([this] { return keys->buttonPresses == 4; }));
  EXPECT_TRUE(keys->presses.empty());
}

TEST_F(ControlWidgetsTest, CheckboxShowsTheModelAndIsFlippedByIt) {
  show();
  auto& shownBox = widgetOf<QCheckBox>(*checkbox);
  QTest::mouseClick(&shownBox, Qt::LeftButton, Qt::NoModifier, QPoint(8, shownBox.height() / 2));
  EXPECT_TRUE(isOn());
  EXPECT_TRUE(until([&] { return shownBox.isChecked(); }));
  shownBox.setFocus(Qt::TabFocusReason);
  key(Qt::Key_Space);
  EXPECT_FALSE(isOn());
  EXPECT_TRUE(until([&] { return !shownBox.isChecked(); }));
  checkbox->setState(NSControlStateValue::On);
  EXPECT_TRUE(until([&] { return shownBox.isChecked(); }));
}

TEST_F(ControlWidgetsTest, BoxThatIsMarkedStandsOutInEveryTheme) {
  const QPalette former = QApplication::palette();
  show();
  for (const QColor& background : {QColor(40, 40, 44), QColor(240, 240, 240)}) {
    QApplication::setPalette(QPalette(background));
    box->setBorderColor(platform::NSSystemColor::Separator);
    settle();
    window->displayIfNeeded();
    EXPECT_LT(contrast(edgeOf(widgetOf(*box)), background), kShapeContrast);
    box->setBorderColor(NSColor::RGBA{0, 0, 1, 1});
    window->displayIfNeeded();
    EXPECT_GE(contrast(edgeOf(widgetOf(*box)), background), kShapeContrast);
  }
  QApplication::setPalette(former);
}

TEST_F(ControlWidgetsTest, WhatChangesInsideLeavesTheWindowItsSize) {
  show();
  auto& shownButton = widgetOf<QPushButton>(*button);
  button->setTitle("A longer title");
  EXPECT_TRUE(until([&] { return shownButton.text() == QLatin1String("A longer title"); }));
  settle();
  const QSize before = shown()->size();
  const QSize boxBefore = widgetOf(*box).size();
  button->setHidden(true);
  label->setStringValue("");
  EXPECT_TRUE(until([&] { return !shownButton.isVisible(); }));
  settle();
  EXPECT_EQ(shown()->size(), before);
  EXPECT_EQ(widgetOf(*box).size(), boxBefore);
}

TEST_F(ControlWidgetsTest, ViewsThatComeAndGoAreShownAndTheRestGoesOn) {
  show();
  const auto shows = [](const QStringList& wanted) {
    return until([&] {
      QStringList texts;
      for (const QLabel* each : shown()->findChildren<QLabel*>()) texts << each->text();
      return texts == wanted;
    });
  };
  content->addSubview(ui_test::make<platform::NSTextField>({{"text", "Another"}}));
  EXPECT_TRUE(shows({"None", "Another"}));
  label->removeFromSuperview();
  EXPECT_TRUE(shows({"Another"}));
  QTest::mouseClick(&widgetOf(*button), Qt::LeftButton);
  EXPECT_EQ(keys->buttonPresses, 1);
}

TEST_F(ControlWidgetsTest, ShortcutCanBeReadAndIsSaidInWords) {
  show();
  const struct {
    const char* model;
    const char* shown;
    const char* said;
  } rows[] = {
      {"⌃⌥p", "⌃⌥p", "Ctrl+Alt+P"},
      {"⇧⌘R", "⇧⌘R", "Shift+Super+R"},
      {"⌃ö", "⌃ö", "Ctrl+Ö"},
      {"⌃\u0003", "⌃Enter", "Ctrl+Enter"},
      {"⌃\uF746", "⌃Insert", "Ctrl+Insert"},
      {"⌃ ", "⌃Space", "Ctrl+Space"},
      {"⇧", "⇧", "Shift+"},
      {"Record Shortcut", "Record Shortcut", "Record Shortcut"},
  };
  for (const auto& row : rows) {
    label->setStringValue(row.model);
    box->setAccessibilityHelp(row.model);
    window->displayIfNeeded();
    EXPECT_EQ(widgetOf<QLabel>(*label).text().toStdString(), row.shown);
    EXPECT_EQ(readerOf(*box).text(QAccessible::Description).toStdString(), row.said);
    EXPECT_EQ(readerOf(*label).text(QAccessible::Name).toStdString(), row.said);
    EXPECT_EQ(widgetOf(*label).toolTip().toStdString(),
              std::string_view(row.said) == row.shown ? "" : row.said);
    EXPECT_EQ(label->stringValue(), row.model);
  }
}

TEST_F(ControlWidgetsTest, ScreenReaderIsToldWhatEachControlIs) {
  show();
  const struct {
    const platform::NSView& view;
    QAccessible::Role role;
    const char* name;
    const char* help;
  } rows[] = {
      {*button, QAccessible::PushButton, "&Record", "Waits for a key"},
      {*checkbox, QAccessible::CheckBox, "Start at login", "Every time"},
      {*box, QAccessible::Grouping, "Shortcut", ""},
      {*label, QAccessible::StaticText, "None", ""},
  };
  for (const auto& row : rows) {
    QAccessibleInterface& reader = readerOf(row.view);
    EXPECT_EQ(reader.role(), row.role) << row.name;
    EXPECT_EQ(reader.text(QAccessible::Name).toStdString(), row.name);
    EXPECT_EQ(reader.text(QAccessible::Description).toStdString(), row.help) << row.name;
  }
  EXPECT_EQ(readerOf(*label).parent()->object(), &widgetOf(*box));
  label->setAccessibilityLabel("Keys");
  EXPECT_TRUE(until(
      [&] { return readerOf(*label).text(QAccessible::Name) == QLatin1String("Keys: None"); }));
}

TEST_F(ControlWidgetsTest, WhatIsHiddenIsNotThereForAScreenReader) {
  show();
  QAccessibleInterface& reader = *QAccessible::queryAccessibleInterface(shown());
  const auto hasButton = [&] { return reader.indexOfChild(&readerOf(*button)) >= 0; };
  EXPECT_TRUE(hasButton());
  button->setHidden(true);
  EXPECT_TRUE(until([&] { return !hasButton(); }));
  EXPECT_EQ(reader.childCount(), 2);
  button->setHidden(false);
  EXPECT_TRUE(until(hasButton));
}

TEST_F(ControlWidgetsTest, BoxWithAnActionIsPressedAnywhereInIt) {
  const auto field = ui_test::make<platform::NSBox>({{"action", "pressed:"}});
  const auto text = ui_test::make<platform::NSTextField>({{"text", "Ctrl"}});
  field->setTarget(keys);
  field->addSubview(text);
  content->addSubview(field);
  show();
  QTest::mouseClick(shown()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                    widgetOf(*text).mapTo(shown(), QPoint(3, 3)));
  EXPECT_EQ(keys->buttonPresses, 1);
  QTest::mouseClick(&widgetOf(*field), Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
  EXPECT_EQ(keys->buttonPresses, 2);
  QTest::mouseClick(&widgetOf(*field), Qt::RightButton);
  QTest::mousePress(&widgetOf(*field), Qt::LeftButton);
  QTest::mouseRelease(&widgetOf(*field), Qt::LeftButton, Qt::NoModifier, QPoint(-200, -200));
  QTest::mouseClick(&widgetOf(*box), Qt::LeftButton);
  EXPECT_EQ(keys->buttonPresses, 2) << "let go elsewhere, and a box without an action";
}

TEST_F(ControlWidgetsTest, LongTextBreaksRatherThanWidenTheWindow) {
  show();
  const QSize before = widgetOf(*label).size();
  label->setStringValue("Not on this desktop: the settings of a daemon cannot be reached at all");
  EXPECT_TRUE(until([&] { return widgetOf(*label).height() > before.height(); }));
  EXPECT_LT(widgetOf(*label).width(), 400);
  EXPECT_GE(widgetOf(*label).height(), widgetOf(*label).heightForWidth(widgetOf(*label).width()));
  label->setStringValue("None");
  EXPECT_TRUE(until([&] { return widgetOf(*label).height() == before.height(); }));
}

// --- Keys ---

TEST_F(ControlWidgetsTest, EveryKeyIsReportedThatNoControlNeeds) {
  show();
  for (const auto& view : {std::static_pointer_cast<platform::NSView>(button),
                           std::static_pointer_cast<platform::NSView>(checkbox)}) {
    focus(*view);
    for (const Qt::Key plain :
         {Qt::Key_A, Qt::Key_Left, Qt::Key_F10, Qt::Key_Menu, Qt::Key_Escape}) {
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
  key(Qt::Key_R, Qt::AltModifier);
  EXPECT_TRUE(lastWas(Qt::Key_R, Bits::Option)) << "no letter of a title is a shortcut";
  EXPECT_EQ(keys->buttonPresses, 0);
  EXPECT_EQ(closes, 0) << "not even Escape closes it";
  shown()->close();
  EXPECT_EQ(closes, 1);
  EXPECT_NE(shown(), nullptr) << "the model closes it";
}

TEST_F(ControlWidgetsTest, ControlsKeepTheirKeysAndLoseThemToModifiers) {
  show();
  const std::pair<Qt::KeyboardModifier, std::uint32_t> rows[] = {
      {Qt::ControlModifier, Bits::Control},
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
  for (const auto& [modifier, flag] : rows) {
    for (const Qt::Key needed : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Tab}) {
      if (needed == Qt::Key_Tab && modifier == Qt::ShiftModifier) continue;
      key(needed, modifier);
      EXPECT_TRUE(lastWas(needed, flag)) << needed;
    }
  }
  EXPECT_EQ(keys->buttonPresses, 0);
  EXPECT_EQ(QApplication::focusWidget(), &widgetOf(*button));
}

TEST_F(ControlWidgetsTest, ModifiersAloneAndRepeatsAreNotReported) {
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
