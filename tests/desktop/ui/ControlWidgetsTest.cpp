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

class ControlWidgetsTest : public TitledTest {
 protected:
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

TEST_F(ControlWidgetsTest, ButtonFollowsItsTitleAndKeepsItsRoomWhileHidden) {
  show();
  auto& shownButton = widgetOf<QPushButton>(*button);
  EXPECT_EQ(readerOf(*button).text(QAccessible::Name), QStringLiteral("&Record"));
  button->setTitle("A longer title");
  EXPECT_TRUE(until([&] { return shownButton.text() == QLatin1String("A longer title"); }));
  settle();
  const QSize before = shown()->size();
  button->setHidden(true);
  EXPECT_TRUE(until([&] { return !shownButton.isVisible(); }));
  settle();
  EXPECT_EQ(shown()->size(), before);
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
    EXPECT_FALSE(readerOf(*box).state().selected);
    box->setBorderColor(NSColor::RGBA{0, 0, 1, 1});
    window->displayIfNeeded();
    EXPECT_GE(contrast(edgeOf(widgetOf(*box)), background), kShapeContrast);
    EXPECT_TRUE(readerOf(*box).state().selected);
  }
  QApplication::setPalette(former);
}

TEST_F(ControlWidgetsTest, BoxHoldsItsTextAndDoesNotChangeItsSizeWithIt) {
  show();
  QWidget& shownBox = widgetOf(*box);
  const QSize before = shownBox.size();
  auto& text = widgetOf<QLabel>(*label);
  EXPECT_TRUE(shownBox.isAncestorOf(&text));
  label->setStringValue("");
  EXPECT_TRUE(until([&] { return text.text().isEmpty(); }));
  settle();
  EXPECT_EQ(shownBox.size(), before);
}

TEST_F(ControlWidgetsTest, ViewThatComesIntoABoxIsShownAndTheRestGoesOn) {
  show();
  label->removeFromSuperview();
  const auto other = ui_test::make<platform::NSTextField>({{"text", "Another"}});
  box->addSubview(other);
  EXPECT_TRUE(until([&] {
    const auto labels = shown()->findChildren<QLabel*>();
    return labels.size() == 1 && labels.front()->text() == QLatin1String("Another");
  }));
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
      {"⌥f5", "⌥f5", "Alt+F5"},
      {"⌃ö", "⌃ö", "Ctrl+Ö"},
      {"⌃\u0003", "⌃Enter", "Ctrl+Enter"},
      {"⌃\uF746", "⌃Insert", "Ctrl+Insert"},
      {"⌃ ", "⌃Space", "Ctrl+Space"},
      {"⇧", "⇧", "Shift+"},
      {"Record Shortcut", "Record Shortcut", "Record Shortcut"},
      {"", "", ""},
  };
  for (const auto& row : rows) {
    label->setStringValue(row.model);
    box->setAccessibilityHelp(row.model);
    window->displayIfNeeded();
    EXPECT_EQ(widgetOf<QLabel>(*label).text().toStdString(), row.shown);
    EXPECT_EQ(readerOf(*box).text(QAccessible::Description).toStdString(), row.said);
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

}  // namespace
}  // namespace linux_desktop
