// The panel's own Do Not Disturb on the Linux desktop, without the panel. With arguments, each "on"
// or "off" is carried out and the program ends; without, they come as methods over the bus. "look"
// only reads the state.
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <string_view>

#include "desktop/linux/LinuxDesktop.h"
#include "platform/Runtime.h"
#include "presentation/ViewController.h"
#include "shared/ScriptRunner.h"

namespace {

constexpr const char* kLook = R"(tell application "System Events"
  tell application process "ControlCenter"
    click menu bar item "Focus" of menu bar 1
    set state to value of checkbox "Do Not Disturb" of window 1
  end tell
  key code 53
end tell)";

void carryOut(std::string_view what) {
  if (what == "look") return shared::runAppleScript(kLook);
  presentation::ViewController controller;
  what == "on" ? controller.turnOnDoNotDisturb() : controller.turnOffDoNotDisturb();
}

class Remote final : public QDBusVirtualObject {
 public:
  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    carryOut(message.member().toStdString());
    return bus.send(message.createReply());
  }
};

}  // namespace

int main(int argc, char** argv) {
  auto opened = linux_desktop::LinuxDesktop::open(argc, argv);
  if (const int* exitStatus = std::get_if<int>(&opened)) return *exitStatus;
  const auto& desktop = std::get<0>(opened);
  const platform::Runtime runtime(desktop->desktop());
  for (int number = 1; number < argc; ++number) carryOut(argv[number]);
  if (argc > 1) return 0;

  Remote remote;
  QDBusConnection bus = QDBusConnection::sessionBus();
  bus.registerVirtualObject("/", &remote);
  bus.registerService("org.calmdeck.Probe");
  desktop->desktop().mainLoop.run();
  return 0;
}
