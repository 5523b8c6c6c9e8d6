#pragma once

#include <QAccessible>
#include <QApplication>
#include <QTest>
#include <QWindow>

#include "desktop/ui/UiTest.h"
#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSWindowController.h"

namespace ui_test {

/// A titled window with a button, a checkbox, and a text in a box.
class TitledTest : public UiTest, public platform::NSWindowDelegate {
 protected:
  TitledTest() {
    content->addSubview(button);
    content->addSubview(checkbox);
    box->addSubview(label);
    content->addSubview(box);
    window->setTitle("Preferences");
    window->setContentView(content);
    window->setDelegate(this);
    window->setWindowController(keys);
    button->setTarget(keys);
    button->setAction("pressed:");
  }
  ~TitledTest() override { window->orderOut(nullptr); }

  void windowShouldClose() override { ++closes; }
  void userActedElsewhere() override {}

  void show() { present(*window, platform::port::PlacedByDesktop{}); }

  template <class Widget = QWidget>
  static Widget& widgetOf(const platform::NSView& view) {
    return dynamic_cast<Widget&>(*UiTest::widgetOf(view));
  }
  static QAccessibleInterface& readerOf(const platform::NSView& view) {
    return *QAccessible::queryAccessibleInterface(&widgetOf(view));
  }
  /// As the window system does.
  static void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(shown()->windowHandle(), key, modifiers);
  }

  /// Counts what reaches the controller.
  class Keys final : public platform::NSWindowController {
   public:
    void keyDown(const platform::NSEvent& event) override { presses.push_back(event); }
    void pressed() { ++buttonPresses; }
    [[nodiscard]] const platform::ClassDescription& classDescription() const override {
      static constexpr std::array messages{platform::message<&Keys::pressed>("pressed:")};
      static constexpr platform::ClassDescription description{
          .className = "Keys", .messages = messages, .outlets = {}, .keys = {}};
      return description;
    }
    std::vector<platform::NSEvent> presses;
    int buttonPresses = 0;
  };

  std::shared_ptr<Keys> keys = std::make_shared<Keys>();
  std::shared_ptr<platform::NSStackView> content =
      make<platform::NSStackView>({{"spacing", "8"}, {"left", "12"}, {"top", "12"}});
  std::shared_ptr<platform::NSButton> button =
      make<platform::NSButton>({{"title", "&Record"}, {"accessibilityHelp", "Waits for a key"}});
  std::shared_ptr<platform::NSButton> checkbox = make<platform::NSCheckbox>(
      {{"title", "Start at login"}, {"accessibilityHelp", "Every time"}});
  std::shared_ptr<platform::NSBox> box =
      make<platform::NSBox>({{"accessibilityLabel", "Shortcut"}});
  std::shared_ptr<platform::NSTextField> label = make<platform::NSTextField>({{"text", "None"}});
  std::shared_ptr<platform::NSWindow> window =
      std::make_shared<platform::NSWindow>(platform::NSWindowStyle::Titled);
  int closes = 0;
};

}  // namespace ui_test
