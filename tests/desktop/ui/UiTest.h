#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QDeadlineTimer>
#include <array>
#include <functional>
#include <memory>
#include <string>

#include "controls/CToggleButton.h"
#include "desktop/linux/loop/QtMainLoop.h"
#include "desktop/linux/tray/StatusItemAnchor.h"
#include "desktop/linux/ui/PanelWindow.h"
#include "desktop/linux/ui/QtWindows.h"
#include "desktop/linux/windowsystem/KeyTranslator.h"
#include "desktop/linux/windowsystem/MonitorScreens.h"
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
  [[nodiscard]] std::optional<platform::NSEvent> translate(const QKeyEvent& press) override {
    using Bits = platform::NSEventModifierFlags;
    for (const Qt::Key key : {Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_Meta}) {
      if (press.key() == key) return std::nullopt;
    }
    platform::NSEvent event;
    event.type = platform::NSEventType::KeyDown;
    event.keyCode = static_cast<std::uint16_t>(press.key());
    if (press.modifiers().testFlag(Qt::ShiftModifier)) event.modifierFlags |= Bits::Shift;
    if (press.modifiers().testFlag(Qt::ControlModifier)) event.modifierFlags |= Bits::Control;
    if (press.modifiers().testFlag(Qt::AltModifier)) event.modifierFlags |= Bits::Option;
    if (press.modifiers().testFlag(Qt::MetaModifier)) event.modifierFlags |= Bits::Command;
    return event;
  }
};

/// Qt, without a screen.
class QtEnvironment final : public ::testing::Environment {
 public:
  void SetUp() override {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static std::array<char, 8> name{"UiTest"};
    static std::array<char*, 2> arguments{name.data(), nullptr};
    static int count = 1;
    application_ = std::make_unique<QApplication>(count, arguments.data());
    QApplication::setStyle(QStringLiteral("Fusion"));
  }
  void TearDown() override { application_.reset(); }

 private:
  std::unique_ptr<QApplication> application_;
};

inline const ::testing::Environment* const kQt =
    ::testing::AddGlobalTestEnvironment(std::make_unique<QtEnvironment>().release());

/// Windows and main loop of the Linux desktop, without a screen. What a program of windows alone
/// does not use is simulated.
class UiTest : public ::testing::Test {
 public:
  ~UiTest() override { settle(); }

  /// Handles events until `fact` holds; false when it still does not after twenty seconds.
  static bool until(const std::function<bool()>& fact) {
    const QDeadlineTimer patience(std::chrono::seconds(20));
    while (!fact() && !patience.hasExpired()) {
      QApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return fact();
  }
  /// Shows the window; returns when it has the keyboard.
  static void present(platform::NSWindow& window, const platform::port::Placement& placement) {
    window.show(placement);
    window.makeKeyWindow();
    EXPECT_TRUE(until([&] { return window.isKeyWindow(); }));
  }
  /// Handles what has arrived.
  static void settle() {
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  /// What is on the screen of the test's window; null while nothing is.
  static linux_desktop::PanelWindow* shown() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* window = dynamic_cast<linux_desktop::PanelWindow*>(widget);
      if (window != nullptr && window->isVisible()) return window;
    }
    return nullptr;
  }
  /// What shows a view there; null while nothing does.
  static QWidget* widgetOf(const platform::NSView& view) {
    for (auto* widget : shown()->findChildren<QWidget*>()) {
      const auto* found = dynamic_cast<const linux_desktop::ViewWidget*>(widget);
      if (found != nullptr && &found->view() == &view) return widget;
    }
    return nullptr;
  }

 private:
  simulated::SimulatedDesktop simulated_;
  linux_desktop::QtScreens screens_;
  TestKeys keys_;
  linux_desktop::OwnWindows ownWindows_;

 protected:
  linux_desktop::QtMainLoop loop;
  linux_desktop::QtWindows windows{loop, ownWindows_, nullptr, &keys_};

 private:
  platform::Desktop desktop_{.mainLoop = loop,
                             .standardOutput = simulated_.desktop.standardOutput,
                             .defaults = simulated_.desktop.defaults,
                             .session = simulated_.desktop.session,
                             .windows = windows,
                             .statusBar = simulated_.desktop.statusBar,
                             .screens = screens_,
                             .systemVersion = {},
                             .bundlePath = {}};
  platform::Runtime runtime_{desktop_};
};

}  // namespace ui_test
