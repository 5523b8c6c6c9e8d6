#include <gtest/gtest.h>

#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSWindow.h"
#include "support/DeskTest.h"

namespace platform {
namespace {

using tests::Attributes;

class ControlsTest : public tests::DeskTest {
 protected:
  /// How often the window was told of changes while `act` ran, and in the turn that ended it.
  int updatesBy(const std::function<void()>& act) {
    const int before = desk.screen.updates();
    act();
    desk.loop.settle();
    return desk.screen.updates() - before;
  }
  void show(const std::shared_ptr<NSView>& view) {
    window->setContentView(view);
    window->show(port::PlacedByDesktop{});
    desk.loop.settle();
  }

  std::shared_ptr<NSWindow> window = std::make_shared<NSWindow>(NSWindowStyle::Titled);
};

TEST_F(ControlsTest, TheWindowIsToldOnceOfWhatChanges) {
  const auto target = std::make_shared<tests::Listener>();
  const auto checkbox = objectFromCoder<NSCheckbox>(Attributes{{"action", "called"}});
  checkbox->setTarget(target);
  show(checkbox);
  EXPECT_EQ(updatesBy([&] {
              desk.screen.press(*checkbox);
              EXPECT_EQ(target->calls, 0);
              desk.screen.release(*checkbox);
            }),
            1);
  EXPECT_EQ(checkbox->accessibilityValue(), std::optional(true));
  EXPECT_EQ(updatesBy([&] {
              checkbox->setState(NSControlStateValue::Off);
              checkbox->setState(NSControlStateValue::Off);
            }),
            1);
  EXPECT_EQ(checkbox->accessibilityValue(), std::optional(false));
  EXPECT_EQ(target->calls, 1);
  const auto button = objectFromCoder<NSButton>(Attributes{{"title", "Record"}});
  show(button);
  EXPECT_EQ(updatesBy([&] { button->setTitle("Stop"); }), 1);
  const auto box = objectFromCoder<NSBox>(Attributes{{"borderColor", "#0000ff"}});
  show(box);
  EXPECT_EQ(updatesBy([&] { box->setBorderColor(NSColor::blueColor()); }), 0);
  EXPECT_EQ(updatesBy([&] { box->setBorderColor(NSColor::grayColor()); }), 1);
}

}  // namespace
}  // namespace platform
