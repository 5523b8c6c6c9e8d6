#pragma once

#include <QApplication>
#include <QTest>
#include <QWidget>

#include "desktop/ui/UiTest.h"
#include "platform/appkit/NSTextField.h"

namespace ui_test {

/// A window at a status item with a text and two switches.
class PanelTest : public UiTest, public platform::NSWindowDelegate {
 protected:
  PanelTest() {
    content->addSubview(label);
    content->addSubview(first);
    content->addSubview(second);
    window->setContentView(content);
    window->setDelegate(this);
  }
  ~PanelTest() override { window->orderOut(nullptr); }

  void windowShouldClose() override { ++closes; }
  void userActedElsewhere() override { ++actsElsewhere; }

  /// Shows the panel; returns when it has the keyboard.
  void show() {
    window->show(platform::port::PlacedAtStatusItem{&item});
    window->makeKeyWindow();
    EXPECT_TRUE(until([this] { return window->isKeyWindow(); }));
  }

  /// As the keyboard does: to whatever has the focus.
  static void key(Qt::Key key, QTest::KeyAction action = QTest::Click) {
    QTest::sendKeyEvent(action, QApplication::focusWidget(), key, QString(), Qt::NoModifier);
  }

  TestStatusItem item;
  std::shared_ptr<platform::NSStackView> content =
      make<platform::NSStackView>({{"spacing", "8"}, {"left", "12"}, {"top", "12"}});
  std::shared_ptr<platform::NSTextField> label =
      make<platform::NSTextField>({{"text", "Sound"}, {"textColor", "secondaryLabelColor"}});
  std::shared_ptr<controls::CToggleButton> first = make<controls::CToggleButton>(
      {{"accessibilityLabel", "Mute"}, {"accessibilityHelp", "Mutes the speaker"}});
  std::shared_ptr<controls::CToggleButton> second = make<controls::CToggleButton>({});
  std::shared_ptr<platform::NSWindow> window =
      std::make_shared<platform::NSWindow>(platform::NSWindowStyle::Popover);
  int closes = 0;
  int actsElsewhere = 0;
};

}  // namespace ui_test
