#include "desktop/ui/UiTest.h"

#include <QApplication>
#include <QDeadlineTimer>

#include "desktop/linux/windowsystem/MonitorScreens.h"
#include "platform/Desktop.h"

namespace ui_test {
namespace {

/// What a program of windows alone does not use is simulated.
platform::Desktop desktopOf(platform::port::MainLoop& loop, platform::port::Windows& windows,
                            platform::port::Screens& screens, const platform::Desktop& rest) {
  return {.mainLoop = loop,
          .standardOutput = rest.standardOutput,
          .defaults = rest.defaults,
          .session = rest.session,
          .windows = windows,
          .statusBar = rest.statusBar,
          .screens = screens,
          .systemVersion = {},
          .bundlePath = {}};
}

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

const ::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(std::make_unique<QtEnvironment>().release());

}  // namespace

std::optional<platform::NSEvent> TestKeys::translate(const QKeyEvent& press) {
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

struct UiTest::Desk {
  simulated::SimulatedDesktop simulated;
  linux_desktop::QtScreens qtScreens;
  linux_desktop::QtMainLoop loop;
  TestKeys keys;
  linux_desktop::OwnWindows ownWindows;
  linux_desktop::QtWindows qtWindows{loop, ownWindows, nullptr, &keys};
  platform::Desktop desktop = desktopOf(loop, qtWindows, qtScreens, simulated.desktop);
  platform::Runtime runtime{desktop};
};

UiTest::UiTest() : desk_(std::make_unique<Desk>()), loop(desk_->loop), windows(desk_->qtWindows) {}

UiTest::~UiTest() {
  settle();
}

bool UiTest::until(const std::function<bool()>& fact) {
  const QDeadlineTimer patience(std::chrono::seconds(20));
  while (!fact() && !patience.hasExpired()) {
    QApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return fact();
}

void UiTest::present(platform::NSWindow& window, const platform::port::Placement& placement) {
  window.show(placement);
  window.makeKeyWindow();
  EXPECT_TRUE(until([&] { return window.isKeyWindow(); }));
}

linux_desktop::PanelWindow* UiTest::shown() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    auto* window = dynamic_cast<linux_desktop::PanelWindow*>(widget);
    if (window != nullptr && window->isVisible()) return window;
  }
  return nullptr;
}

QWidget* UiTest::widgetOf(const platform::NSView& view) {
  for (auto* widget : shown()->findChildren<QWidget*>()) {
    const auto* found = dynamic_cast<const linux_desktop::ViewWidget*>(widget);
    if (found != nullptr && &found->view() == &view) return widget;
  }
  return nullptr;
}

void UiTest::settle() {
  QApplication::processEvents();
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

}  // namespace ui_test
