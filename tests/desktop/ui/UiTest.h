#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "controls/CToggleButton.h"
#include "desktop/linux/loop/QtMainLoop.h"
#include "desktop/linux/tray/StatusItemAnchor.h"
#include "desktop/linux/ui/PanelWindow.h"
#include "desktop/linux/ui/QtWindows.h"
#include "desktop/linux/windowsystem/KeyTranslator.h"
#include "platform/Desktop.h"
#include "platform/Runtime.h"
#include "platform/appkit/NSView.h"
#include "platform/appkit/NSWindow.h"
#include "support/DeskTest.h"

namespace ui_test {

template <class View>
std::shared_ptr<View> make(const tests::Attributes& attributes = {}) {
  return platform::objectFromCoder<View>(attributes);
}

/// The status item of a test, shown or not.
class TestStatusItem final : public platform::port::StatusItemPeer,
                             public linux_desktop::StatusItemAnchor {
 public:
  void setImage(const platform::NSImage*) override {}
  void setToolTip(const std::string&) override {}
  void openMenu(const platform::NSMenu&) override {}
  [[nodiscard]] bool isShown() const override { return shown; }
  [[nodiscard]] bool isComing() const override { return coming; }
  [[nodiscard]] linux_desktop::Anchor anchor() const override { return {{500, 795}, {}}; }
  void menuRequested(QWidget&) override { ++menuRequests; }
  void setActivationObserver(std::function<void(platform::NSEventType)> activated) override {
    observer = std::move(activated);
  }

  bool shown = true;
  bool coming = false;
  int menuRequests = 0;
  std::function<void(platform::NSEventType)> observer;
};

/// Gives each key its Qt::Key for a code.
class TestKeys final : public linux_desktop::KeyTranslator {
 public:
  [[nodiscard]] std::optional<platform::NSEvent> translate(const QKeyEvent& press) override;
};

/// Windows and main loop of the Linux desktop, without a screen. Nothing else of a desktop exists.
class UiTest : public ::testing::Test {
 public:
  UiTest();
  ~UiTest() override;

  /// Handles events until `fact` holds; false when it still does not after twenty seconds.
  static bool until(const std::function<bool()>& fact);
  /// Shows the window; returns when it has the keyboard.
  static void present(platform::NSWindow& window, const platform::port::Placement& placement);
  /// Handles what has arrived.
  static void settle();
  /// What is on the screen of the test's window; null while nothing is.
  static linux_desktop::PanelWindow* shown();
  /// What shows a view there; null while nothing does.
  static QWidget* widgetOf(const platform::NSView& view);

 private:
  struct Desk;
  std::unique_ptr<Desk> desk_;

 protected:
  linux_desktop::QtMainLoop& loop;
  linux_desktop::QtWindows& windows;
};

}  // namespace ui_test
