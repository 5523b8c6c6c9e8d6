#include "app/ControllerFactory.h"
#include "desktop/linux/LinuxDesktop.h"
#include "platform/Runtime.h"
#include "platform/appkit/NSApplication.h"
#include "platform/foundation/NSBundle.h"
#include "resources/Resources.h"

int main(int argc, char** argv) {
  auto opened = linux_desktop::LinuxDesktop::open(argc, argv);
  if (const int* exitStatus = std::get_if<int>(&opened)) return *exitStatus;
  const auto& desktop = std::get<0>(opened);

  platform::Runtime runtime(desktop->desktop());
  for (const resources::File& file : resources::files()) {
    platform::NSBundle::mainBundle().addResource(std::string(file.name), file.bytes);
  }
  app::registerClasses();
  platform::NSApplicationMain();
  return 0;
}
