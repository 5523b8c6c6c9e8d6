#include "desktop/ui/UiTest.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <cstdlib>

#include "desktop/linux/windowsystem/MonitorScreens.h"
#include "platform/Desktop.h"

namespace ui_test {
namespace {

/// What every desktop has and a program of windows alone does not use.
class Unused final : public platform::port::Session,
                     public platform::port::StandardOutput,
                     public platform::port::DefaultsStore,
                     public platform::port::StatusBar {
 public:
  void setClient(platform::port::SessionClient*) override {}
  void modeDidChange(bool) override { std::abort(); }
  void print(std::string_view) override { std::abort(); }
  [[nodiscard]] std::optional<platform::Value> object(std::string_view) const override {
    std::abort();
  }
  void set(std::string_view, platform::Value) override { std::abort(); }
  void remove(std::string_view) override { std::abort(); }
  std::unique_ptr<platform::port::StatusItemPeer> createStatusItem(
      platform::port::StatusItemClient&) override {
    std::abort();
  }
  [[nodiscard]] bool itemsHaveButtons() const override { std::abort(); }
};

platform::Desktop desktopOf(platform::port::MainLoop& loop, platform::port::Windows& windows,
                            platform::port::Screens& screens, Unused& unused) {
  return {.mainLoop = loop,
          .standardOutput = unused,
          .defaults = unused,
          .session = unused,
          .windows = windows,
          .statusBar = unused,
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

std::optional<std::string_view> Description::attribute(std::string_view name) const {
  const auto found = attributes_.find(name);
  if (found == attributes_.end()) return std::nullopt;
  return found->second;
}

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
  Unused unused;
  linux_desktop::QtScreens qtScreens;
  linux_desktop::QtMainLoop loop;
  TestKeys keys;
  linux_desktop::OwnWindows ownWindows;
  linux_desktop::QtWindows qtWindows{loop, ownWindows, nullptr, &keys};
  platform::Desktop desktop = desktopOf(loop, qtWindows, qtScreens, unused);
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
